// nvtool: support and demonstration tool over libnvshared.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "nvshared/version.h"
#include "tools/nvtool/context.h"
#include "tools/nvtool/help_format.h"

namespace {

// The commands that read reference data, and so take --refdata.
const std::set<std::string_view> kUsesReferenceData = {
    "exchanges", "demo", "mgt", "name", "match", "sort", "names"};

// What the command line names before CLI11 sees it: the command (the first
// word that is not an option or the value of --refdata) and whether
// --refdata was given anywhere.
struct Outline {
  std::string command;
  bool refdata = false;
};

Outline ReadOutline(int argc, char** argv) {
  Outline outline;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (arg == "--") break;
    if (arg == "--refdata") {
      outline.refdata = true;
      ++i;  // its value
    } else if (arg.starts_with("--refdata=")) {
      outline.refdata = true;
    } else if (outline.command.empty() && !arg.starts_with("-")) {
      outline.command = arg;
    }
  }
  return outline;
}

// Whether `name` is one of the tool's commands.
bool IsCommand(const CLI::App& app, const std::string& name) {
  for (const CLI::App* sub : app.get_subcommands({})) {
    if (!name.empty() && sub->get_name() == name) return true;
  }
  return false;
}

// The commands, in the order the help lists them, comma-separated.
std::string CommandNames(const CLI::App& app) {
  std::string names;
  for (const CLI::App* sub : app.get_subcommands({})) {
    names += (names.empty() ? "" : ", ") + sub->get_name();
  }
  return names;
}

// Checks what CLI11 would report less clearly: an unknown command, and a
// global option given to a command that does not use it. "" if all is well.
std::string CheckOutline(const CLI::App& app, const Outline& outline) {
  if (outline.command.empty()) return "";
  if (!IsCommand(app, outline.command)) {
    return "unknown command '" + outline.command + "'; the commands are " +
           CommandNames(app);
  }
  if (outline.refdata && !kUsesReferenceData.contains(outline.command)) {
    return "--refdata has no effect: this command reads no reference data";
  }
  return "";
}

// Standard output, flushed: false (with errno set) if any write failed, as
// on a full disk or a closed pipe.
bool FlushOutput() {
  std::cout.flush();
  return std::cout.good() && std::fflush(stdout) == 0 && !std::ferror(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  nvtool::Context context{"", &std::cout, &std::cerr};

  CLI::App app{
      "nvtool - support and demonstration tool over the nvshared library.\n"
      "Commands that read reference data run on the bundled sample unless "
      "--refdata names a file. Exit status: 0 success, 1 failure, 2 usage "
      "error; a failure or usage error is one line on standard error.",
      "nvtool"};
  // Set before the commands are added: each takes its parent's formatter.
  app.formatter(std::make_shared<nvtool::HelpFormatter>());
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_version_flag("--version",
                       "nvtool " NVSHARED_VERSION_STRING
                       " (library nvshared " NVSHARED_VERSION_STRING
                       ", " NVSHARED_SONAME ")",
                       "Print the tool's and the library's versions and exit");
  app.require_subcommand(1);
  app.footer(
      "nvtool --refdata my-refdata.json name ESH4\n"
      "prints the name a host shows for the series ESH4 of my-refdata.json.");
  // Global options are accepted after the command too, where users type
  // them: `nvtool name --refdata FILE ESH4`.
  app.fallthrough();
  app.add_option("--refdata", context.refdataPath,
                 "Reference-data JSON file to use instead of the bundled "
                 "sample, for the commands that read reference data: "
                 "exchanges, demo, mgt, name, match, sort, names; default: "
                 "the bundled sample")
      ->type_name("FILE");

  nvtool::AddExchangesCommand(app, context);
  nvtool::AddDemoCommand(app, context);
  nvtool::AddMgtCommand(app, context);
  nvtool::AddNameCommand(app, context);
  nvtool::AddYieldCommand(app, context);
  nvtool::AddPriceCommand(app, context);
  nvtool::AddMatchCommand(app, context);
  nvtool::AddDecodeCommand(app, context);
  nvtool::AddEncodeCommand(app, context);
  nvtool::AddColumnCommand(app, context);
  nvtool::AddModelsCommand(app, context);
  nvtool::AddSortCommand(app, context);
  nvtool::AddNamesCommand(app, context);

  int status = 0;
  const Outline outline = ReadOutline(argc, argv);
  try {
    const std::string problem = CheckOutline(app, outline);
    if (!problem.empty()) throw CLI::ValidationError(problem);
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    status = app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    status = app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    status = app.exit(e);
  } catch (const CLI::RuntimeError& e) {
    // A command failed: its one line, and its exit status. Status 2 is a
    // usage error a command found itself, said like the parser's.
    if (e.get_exit_code() == 2) {
      std::cerr << nvtool::UsageErrorLine(outline.command, e.what()) << "\n";
    } else {
      std::cerr << "nvtool: " << e.what() << "\n";
    }
    status = e.get_exit_code() == 0 ? 1 : e.get_exit_code();
  } catch (const CLI::ParseError& e) {
    // A usage error: one line that also says where the usage is, status 2.
    const bool known = IsCommand(app, outline.command);
    std::string message = e.what();
    if (outline.command.empty() &&
        dynamic_cast<const CLI::RequiredError*>(&e) != nullptr) {
      message = "no command given; the commands are " + CommandNames(app);
    }
    std::cerr << nvtool::UsageErrorLine(known ? outline.command : "", message)
              << "\n";
    status = 2;
  } catch (const std::exception& e) {
    std::cerr << "nvtool: " << e.what() << "\n";
    status = 1;
  }
  if (!FlushOutput()) {
    std::cerr << "nvtool: write error: " << std::strerror(errno) << "\n";
    return 1;
  }
  return status;
}
