// Contract names against the cheapest way to write the same text.
//
// A host names every row of every window, and again on every repaint of a
// sorted column. Each FormatContract case here runs beside a baseline that
// writes the identical final text with one snprintf from pieces known in
// advance: no lookups, no decisions. The ratio is what the naming logic
// costs over printing alone. Both sides write into a string that is reused,
// as a host's row buffer would be.
#include <cstdio>
#include <cstdlib>
#include <string>

#include <benchmark/benchmark.h>

#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/platform/core/reference_data.h"

namespace {

using dv_core_ns::SeriesID;
using nv_fmt::SeriesNameFormatter;

const SeriesID& Sample(int exchange, const char* key) {
  static const bool loaded = [] {
    const nvshared::Status status = dv_core_ns::ReferenceData::LoadFile(
        NVSHARED_SOURCE_DIR "/data/sample-refdata.json");
    if (!status.ok()) {
      std::fprintf(stderr, "%s\n", status.message().c_str());
      std::exit(1);
    }
    return true;
  }();
  (void)loaded;
  const auto* record =
      dv_core_ns::ReferenceData::Current().FindSeries(exchange, key);
  if (record == nullptr) {
    std::fprintf(stderr, "no series %s\n", key);
    std::exit(1);
  }
  return *record->series;
}

void Format(benchmark::State& state, const char* key, const char* expected) {
  const SeriesID& series = Sample(7, key);
  SeriesNameFormatter& formatter = SeriesNameFormatter::Instance();
  formatter.SetProductNameEnabled(true);
  std::string out;
  formatter.FormatContract(series, out, nv_fmt::DefaultFormatContractConfig);
  if (out != expected) {
    state.SkipWithError(("unexpected name: " + out).c_str());
    return;
  }
  for (auto _ : state) {
    formatter.FormatContract(series, out, nv_fmt::DefaultFormatContractConfig);
    benchmark::DoNotOptimize(out.data());
  }
}

template <typename... Args>
void Baseline(benchmark::State& state, const char* expected, const char* format,
              Args... args) {
  std::string out;
  char buffer[128];
  for (auto _ : state) {
    const int n = std::snprintf(buffer, sizeof buffer, format, args...);
    out.assign(buffer, static_cast<std::size_t>(n));
    benchmark::DoNotOptimize(out.data());
  }
  if (out != expected) state.SkipWithError(("baseline wrote " + out).c_str());
}

void BM_Future_FormatContract(benchmark::State& state) {
  Format(state, "ESH4", "ES Mar14");
}
void BM_Future_Snprintf(benchmark::State& state) {
  Baseline(state, "ES Mar14", "%s %s%02d", "ES", "Mar", 14);
}
void BM_Option_FormatContract(benchmark::State& state) {
  Format(state, "ESH4 C1850", "ES Mar14 C1850.00");
}
void BM_Option_Snprintf(benchmark::State& state) {
  Baseline(state, "ES Mar14 C1850.00", "%s %s%02d %c%d.%0*d", "ES", "Mar", 14,
           'C', 1850, 2, 0);
}
void BM_Spread_FormatContract(benchmark::State& state) {
  Format(state, "ESH4-ESM4", "Calendar: 1xES Mar14:-1xJun14");
}
void BM_Spread_Snprintf(benchmark::State& state) {
  Baseline(state, "Calendar: 1xES Mar14:-1xJun14",
           "%s: %dx%s %s%02d:%+dx%s%02d", "Calendar", 1, "ES", "Mar", 14, -1,
           "Jun", 14);
}

BENCHMARK(BM_Future_FormatContract);
BENCHMARK(BM_Future_Snprintf);
BENCHMARK(BM_Option_FormatContract);
BENCHMARK(BM_Option_Snprintf);
BENCHMARK(BM_Spread_FormatContract);
BENCHMARK(BM_Spread_Snprintf);

}  // namespace

BENCHMARK_MAIN();
