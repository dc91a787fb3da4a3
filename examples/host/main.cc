// An example host application: the walk-through of walkthrough.h as a
// program of its own, built against the installed package.
//
//   host [--quiet] DATA_DIR WORK_DIR [PLUGIN]
//
// DATA_DIR holds the sample data (the repository's data/ folder), WORK_DIR
// receives every file the host writes, and PLUGIN is the example price
// model (<libdir>/nvshared/pricemodels/forward_yield.so when installed).
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "walkthrough.h"

int main(int argc, char** argv) {
  example_host::HostOptions options;
  std::vector<std::string> args;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--quiet") == 0) {
      options.quiet = true;
    } else {
      args.emplace_back(argv[i]);
    }
  }
  if (args.size() < 2 || args.size() > 3) {
    std::fprintf(stderr, "usage: host [--quiet] DATA_DIR WORK_DIR [PLUGIN]\n");
    return 2;
  }
  options.dataDir = args[0];
  options.workDir = args[1];
  if (args.size() == 3) options.pluginFile = args[2];
  options.out = &std::cout;
  return example_host::RunHost(options) == 0 ? 0 : 1;
}
