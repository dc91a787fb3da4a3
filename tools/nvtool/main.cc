// nvtool: support and demonstration tool over libnvshared.
#include <iostream>

#include <CLI/CLI.hpp>

#include "nvshared/version.h"
#include "tools/nvtool/context.h"

int main(int argc, char** argv) {
  nvtool::Context context{"", &std::cout, &std::cerr};

  CLI::App app{
      "nvtool - support and demonstration tool over the nvshared library.\n"
      "Runs on the bundled sample reference data unless --refdata names a "
      "file.",
      "nvtool"};
  app.set_version_flag("--version", NVSHARED_VERSION_STRING);
  app.require_subcommand(1);
  app.option_defaults()->always_capture_default();
  app.add_option("--refdata", context.refdataPath,
                 "Reference-data JSON file to use instead of the bundled "
                 "sample")
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
  nvtool::AddSortCommand(app, context);
  nvtool::AddNamesCommand(app, context);

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::RuntimeError& e) {
    // A command failed: its one line, and its exit status.
    std::cerr << "nvtool: " << e.what() << "\n";
    return e.get_exit_code() == 0 ? 1 : e.get_exit_code();
  } catch (const CLI::ParseError& e) {
    // A usage error: one line, where to look for more, and status 2.
    std::cerr << "nvtool: " << e.what() << "\n"
              << "Run 'nvtool --help' for usage.\n";
    return 2;
  } catch (const std::exception& e) {
    std::cerr << "nvtool: " << e.what() << "\n";
    return 1;
  }
  return 0;
}
