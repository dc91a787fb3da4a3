// The custom-name registry and its file.
//
// GetCustomName, the look-up every window makes for every row it names, runs
// beside a std::unordered_map<std::string, std::string> look-up of the same
// series by a key string built in advance: the floor for a hashed look-up
// that does not have to copy and unflavour the series first.
//
// Loading and saving the names file with N entries (1,000 and 10,000)
// through the library's archiver shows the cost per entry stays flat. A
// load is SetArchivePath switching between two copies of one file: it drops
// the names in memory, reads the file, adds each entry (with its notice and
// log line) and writes the file back. A save is a change of one name, which
// rewrites the whole file atomically (with its flushes to disk).
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <benchmark/benchmark.h>

#include "nvshared/naming/binary_archiver.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/core/reference_data.h"
#include "nvshared/platform/log/logger.h"

namespace {

using dv_core_ns::SeriesID;
using nv_fmt::SeriesNameFormatter;

class DiscardSink : public dv_log::LogSink {
 public:
  void Write(const dv_log::LogRecord&) override {}
};

// N futures of a flavoured CME exchange, none expiring.
std::vector<SeriesID> MakeSeries(int n) {
  static const bool loaded = [] {
    const nvshared::Status status = dv_core_ns::ReferenceData::LoadFile(
        NVSHARED_SOURCE_DIR "/data/sample-refdata.json");
    if (!status.ok()) std::exit(1);
    dv_log::GetCustomLog()->SetSink(std::make_shared<DiscardSink>());
    return true;
  }();
  (void)loaded;
  const SeriesID& es =
      *dv_core_ns::ReferenceData::Current().FindSeries(7, "ESH4")->series;
  std::vector<SeriesID> out;
  for (int i = 0; i < n; ++i) {
    SeriesID s = es;
    s.SetSeriesKey("ES" + std::to_string(100000 + i));
    s.expiry = dv_core_ns::Date();
    out.push_back(s);
  }
  return out;
}

// The registry loaded with n names from a file under the temporary
// directory, and a second copy of that file.
struct Registry {
  explicit Registry(int n) : series(MakeSeries(n)) {
    dir = std::filesystem::temp_directory_path() /
          ("nvshared-names-bench-" + std::to_string(n));
    std::filesystem::create_directories(dir);
    a = (dir / "a.dat").string();
    b = (dir / "b.dat").string();
    WriteFile(a);
    WriteFile(b);
    SeriesNameFormatter& f = SeriesNameFormatter::Instance();
    f.SetArchiverFactory(factory);
    f.SetArchivePath(a.c_str());
  }
  // Left in the registry: the next Registry's path replaces them without
  // saving, and a save per removal would cost N files here.
  ~Registry() { std::filesystem::remove_all(dir); }
  void WriteFile(const std::string& path) const {
    nv_fmt::BinaryArchiver archiver;
    archiver.Open(path.c_str(), 1);
    archiver.WriteVersion(SeriesNameFormatter::CURRENT_VERSION);
    archiver.WriteCount(series.size());
    for (std::size_t i = 0; i < series.size(); ++i) {
      SeriesID key = series[i];
      SeriesNameFormatter::MakeUnflavoredSeriesID(key);
      archiver.WriteSeriesID(key);
      archiver.WriteDate(dv_core_ns::Date());
      archiver.WriteBool(false);
      archiver.WriteString("name " + std::to_string(i));
    }
    archiver.Close();
  }
  std::vector<SeriesID> series;
  nv_fmt::BinaryArchiverFactory factory;
  std::filesystem::path dir;
  std::string a, b;
};

void BM_GetCustomName(benchmark::State& state) {
  Registry registry(10000);
  const SeriesID& wanted = registry.series[4321];
  SeriesNameFormatter& f = SeriesNameFormatter::Instance();
  if (f.GetCustomName(wanted) == nullptr) {
    state.SkipWithError("name not found");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(f.GetCustomName(wanted));
}
BENCHMARK(BM_GetCustomName);

void BM_UnorderedMapOfStrings(benchmark::State& state) {
  std::unordered_map<std::string, std::string> names;
  for (int i = 0; i < 10000; ++i) {
    names.emplace("10|ES" + std::to_string(100000 + i),
                  "name " + std::to_string(i));
  }
  const std::string key = "10|ES104321";
  for (auto _ : state) benchmark::DoNotOptimize(names.find(key));
}
BENCHMARK(BM_UnorderedMapOfStrings);

void BM_LoadNamesFile(benchmark::State& state) {
  Registry registry(static_cast<int>(state.range(0)));
  SeriesNameFormatter& f = SeriesNameFormatter::Instance();
  bool useA = true;
  for (auto _ : state) {
    f.SetArchivePath((useA ? registry.a : registry.b).c_str());
    useA = !useA;
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_LoadNamesFile)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond);

void BM_SaveNamesFile(benchmark::State& state) {
  Registry registry(static_cast<int>(state.range(0)));
  SeriesNameFormatter& f = SeriesNameFormatter::Instance();
  bool flip = false;
  for (auto _ : state) {
    f.ChangeCustomSeriesName(registry.series[0], flip ? "first" : "second");
    flip = !flip;
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SaveNamesFile)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
