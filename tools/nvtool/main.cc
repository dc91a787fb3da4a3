// nvtool: support and demonstration tool over libnvshared.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <set>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "nvshared/version.h"
#include "tools/nvtool/context.h"

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

// Checks what CLI11 would report less clearly: an unknown command, and a
// global option given to a command that does not use it. "" if all is well.
std::string CheckOutline(const CLI::App& app, const Outline& outline) {
  if (outline.command.empty()) return "";
  std::string names;
  bool known = false;
  for (const CLI::App* sub : app.get_subcommands({})) {
    known |= sub->get_name() == outline.command;
    names += (names.empty() ? "" : ", ") + sub->get_name();
  }
  if (!known) {
    return "unknown command '" + outline.command + "'; the commands are " +
           names;
  }
  if (outline.refdata && !kUsesReferenceData.contains(outline.command)) {
    return "'" + outline.command +
           "' does not read reference data, so --refdata has no effect on it";
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
      "Runs on the bundled sample reference data unless --refdata names a "
      "file.",
      "nvtool"};
  app.set_version_flag("--version",
                       "nvtool " NVSHARED_VERSION_STRING
                       " (library nvshared " NVSHARED_VERSION_STRING
                       ", " NVSHARED_SONAME ")");
  app.require_subcommand(1);
  app.option_defaults()->always_capture_default();
  // Global options are accepted after the command too, where users type
  // them: `nvtool name --refdata FILE ESH4`.
  app.fallthrough();
  app.add_option("--refdata", context.refdataPath,
                 "Reference-data JSON file to use instead of the bundled "
                 "sample (commands that read reference data: exchanges, "
                 "demo, mgt, name, match, sort, names)")
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
  try {
    const std::string problem = CheckOutline(app, ReadOutline(argc, argv));
    if (!problem.empty()) throw CLI::ValidationError(problem);
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    status = app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    status = app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    status = app.exit(e);
  } catch (const CLI::RuntimeError& e) {
    // A command failed: its one line, and its exit status.
    std::cerr << "nvtool: " << e.what() << "\n";
    status = e.get_exit_code() == 0 ? 1 : e.get_exit_code();
  } catch (const CLI::ParseError& e) {
    // A usage error: one line, where to look for more, and status 2.
    std::cerr << "nvtool: " << e.what() << "\n"
              << "Run 'nvtool --help' for usage.\n";
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
