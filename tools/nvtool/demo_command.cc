// nvtool demo: plays a host application from start to exit on the bundled
// sample data. The walk-through is the example host's own
// (examples/host/walkthrough.cc); this command gives it the sample files, a
// work directory and the example price model.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>

#include "walkthrough.h"

#include "tools/nvtool/context.h"

namespace nvtool {
namespace {

namespace fs = std::filesystem;

struct DemoOptions {
  std::string workDir;
  std::string plugin;
  bool quiet = false;
};

// A new directory under the system's temporary directory.
std::string MakeWorkDir() {
  std::string pattern =
      (fs::temp_directory_path() / "nvtool-demo.XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    throw CLI::RuntimeError("cannot make a work directory under " +
                                fs::temp_directory_path().string(),
                            1);
  }
  return pattern;
}

// The example model installed beside nvtool, else the one of the build tree.
std::string FindExamplePlugin() {
  std::error_code ec;
  const fs::path installed =
      fs::path(DefaultPriceModelDir()) / "pricemodels" / "forward_yield.so";
  if (fs::is_regular_file(installed, ec)) return installed.string();
#ifdef NVTOOL_BUILD_TREE_PLUGIN
  if (fs::is_regular_file(NVTOOL_BUILD_TREE_PLUGIN, ec)) {
    return NVTOOL_BUILD_TREE_PLUGIN;
  }
#endif
  return "";
}

void WriteSampleFiles(const fs::path& dir) {
  fs::create_directories(dir);
  for (const EmbeddedFile* f = kEmbeddedSampleFiles; f->name != nullptr; ++f) {
    std::ofstream out(dir / f->name, std::ios::binary | std::ios::trunc);
    out << f->text;
    if (!out.flush()) {
      throw CLI::RuntimeError("cannot write " + (dir / f->name).string(), 1);
    }
  }
}

void Run(DemoOptions& o, Context& context) {
  std::error_code ec;
  if (o.workDir.empty()) {
    o.workDir = MakeWorkDir();
  } else if (!fs::create_directories(o.workDir, ec) && ec) {
    throw CLI::RuntimeError(
        "cannot make the work directory " + o.workDir + ": " + ec.message(), 1);
  }
  if (o.plugin.empty()) o.plugin = FindExamplePlugin();
  if (!o.plugin.empty() && !fs::is_regular_file(o.plugin, ec)) {
    throw CLI::RuntimeError("no plug-in file " + o.plugin, 1);
  }
  example_host::HostOptions host;
  host.dataDir = (fs::path(o.workDir) / "data").string();
  WriteSampleFiles(host.dataDir);
  host.refdataFile = context.refdataPath;
  host.workDir = o.workDir;
  host.pluginFile = o.plugin;
  host.quiet = o.quiet;
  host.out = context.out;
  const int failed = example_host::RunHost(host);
  if (failed > 0) {
    throw CLI::RuntimeError(
        std::to_string(failed) + " steps of the walk-through failed", 1);
  }
}

}  // namespace

void AddDemoCommand(CLI::App& app, Context& context) {
  auto o = std::make_shared<DemoOptions>();
  CLI::App* sub = app.add_subcommand(
      "demo",
      "Play a host application from start to exit on the sample data.\n"
      "Starts the library in a host's order (reference data, log, "
      "application name, error log, exception reports, message router, "
      "settings stores, custom names, price models with the example "
      "plug-in, gateway logins), does a day's work (contract names, a "
      "custom name kept across a restart, a sorted contract list, a price "
      "column turning ticks into yields to maturity and through the "
      "plug-in model, a default for an order ticket, a limit, an opaque "
      "request answered, an error reported), and shuts down at exit. Each "
      "step prints what a host would show, with the library's log lines, "
      "message boxes and observer calls in line. Every file the host "
      "writes goes into the work directory, which is kept.");
  sub->add_option("--work-dir", o->workDir,
                  "Directory for the host's files (made if missing); "
                  "default: a new nvtool-demo.XXXXXX in the temporary "
                  "directory")
      ->type_name("DIR");
  sub->add_option("--plugin", o->plugin,
                  "The example price-model plug-in; default: the one "
                  "installed with nvtool, else the one built beside it")
      ->type_name("FILE");
  sub->add_flag("--quiet", o->quiet,
                "Print only the summary line, and any failed step; "
                "default: every step");
  sub->footer(
      "nvtool demo --quiet --work-dir /tmp/host\n"
      "plays the host and prints one line; its log, settings and names "
      "file stay in /tmp/host.");
  sub->callback([o, &context] { Run(*o, context); });
}

}  // namespace nvtool
