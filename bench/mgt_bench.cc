// MgtINI::Load of generated MGT files of 100, 1,000 and 10,000 sections,
// beside Boost.PropertyTree's read_ini of the same files. Each section holds
// the keys of a gateway section; the first ones are real market and gateway
// sections, the rest carry names the loader skips.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include <benchmark/benchmark.h>
#include <boost/property_tree/ini_parser.hpp>
#include <boost/property_tree/ptree.hpp>

#include "nvshared/mgt/mgt_ini.h"
#include "nvshared/platform/core/reference_data.h"
#include "nvshared/platform/utils/registry_mgr.h"

namespace {

std::string MakeFile(int sections) {
  static const char* const kReal[] = {
      "market-CME", "gw-CME-A",          "gw-CME-B", "market-CBOT",
      "gw-eCBOT-A", "market-NYSE_Liffe", "gw-LIFFE"};
  std::string text;
  for (int i = 0; i < sections; ++i) {
    char name[32];
    if (i < 7) {
      std::snprintf(name, sizeof name, "%s", kReal[i]);
    } else {
      std::snprintf(name, sizeof name, "site-%06d", i);
    }
    text += "[" + std::string(name) +
            "]\nMember=MEMBER01\nGroup=GRP\nTrader=TRADER01\nPrimary=Y\n"
            "TraderIdType=Username\nPrice_Subscription_Gateway=CME-A,CME-B\n\n";
  }
  return text;
}

// The generated files, written once into the temporary directory.
const std::string& FileOf(int sections) {
  static std::map<int, std::string> paths;
  auto it = paths.find(sections);
  if (it != paths.end()) return it->second;
  const auto path = std::filesystem::temp_directory_path() /
                    ("nvshared_mgt_bench_" + std::to_string(sections) + ".mgt");
  std::ofstream(path, std::ios::binary) << MakeFile(sections);
  return paths.emplace(sections, path.string()).first->second;
}

void Setup() {
  static bool done = [] {
    const auto status = dv_core_ns::ReferenceData::LoadFile(
        NVSHARED_SOURCE_DIR "/data/sample-refdata.json");
    if (!status.ok()) std::abort();
    CRegistryMgr::Instance(1).WriteRegString("SEServer",
                                             "EnableDynamicConnections", "N");
    return true;
  }();
  (void)done;
}

void BM_MgtIniLoad(benchmark::State& state) {
  Setup();
  const std::string& path = FileOf(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    nv_ns::MgtINI mgt;
    benchmark::DoNotOptimize(mgt.Load(path.c_str()));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetBytesProcessed(state.iterations() *
                          std::filesystem::file_size(path));
}

void BM_PropertyTreeReadIni(benchmark::State& state) {
  Setup();
  const std::string& path = FileOf(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    boost::property_tree::ptree tree;
    boost::property_tree::read_ini(path, tree);
    benchmark::DoNotOptimize(tree.size());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetBytesProcessed(state.iterations() *
                          std::filesystem::file_size(path));
}

BENCHMARK(BM_MgtIniLoad)->Arg(100)->Arg(1000)->Arg(10000);
BENCHMARK(BM_PropertyTreeReadIni)->Arg(100)->Arg(1000)->Arg(10000);

}  // namespace

BENCHMARK_MAIN();
