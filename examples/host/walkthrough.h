// A host application's life with nvshared, from start to exit, on the
// sample data of the repository's data/ folder: the library started in its
// order, a day's work (contract names, a custom name kept across a restart,
// a sorted contract list, a price column through a built-in converter and a
// plug-in model, a default for an order ticket, a limit, an opaque request
// answered), and the shut-down, which runs at exit.
//
// It uses the installed headers only. `nvtool demo` runs this same code;
// main.cc beside it is the program a new host engineer copies.
//
// Threads: everything runs on the calling thread, which should be the
// process's main thread (the error log renames it).
#ifndef NVSHARED_EXAMPLES_HOST_WALKTHROUGH_H_
#define NVSHARED_EXAMPLES_HOST_WALKTHROUGH_H_

#include <ostream>
#include <string>

namespace example_host {

struct HostOptions {
  // Holds sample.mgt, sample-defaults.json, sample-column.ini and
  // sample-column-prices.txt, and sample-refdata.json unless `refdataFile`
  // names another file.
  std::string dataDir;
  std::string refdataFile;
  // Every file the host writes goes here: its log, its two settings
  // stores, its custom-names file and its configuration directory. It is
  // created if missing; nothing is written anywhere else.
  std::string workDir;
  // The example price-model plug-in (forward_yield.so), copied into the
  // configuration directory as an installer would; empty: none.
  std::string pluginFile;
  // Only the summary line (and any failure) is printed.
  bool quiet = false;
  std::ostream* out = nullptr;
};

// Starts the library and does the day's work. The shut-down is registered
// to run at exit, after the contract-name formatter has told its observers
// that it ends; it prints the summary line last. Returns the number of steps
// that failed: 0 when all went as a host expects. Call it once per process,
// and keep `options.out` alive until exit.
int RunHost(const HostOptions& options);

}  // namespace example_host

#endif  // NVSHARED_EXAMPLES_HOST_WALKTHROUGH_H_
