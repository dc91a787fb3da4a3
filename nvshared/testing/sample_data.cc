#include "nvshared/testing/sample_data.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>

#include "nvshared/platform/core/reference_data.h"

namespace nvshared::testing {

void InstallSampleReferenceData() {
  static std::once_flag once;
  std::call_once(once, [] {
    const std::string path =
        std::string(NVSHARED_SOURCE_DIR) + "/data/sample-refdata.json";
    const nvshared::Status status = dv_core_ns::ReferenceData::LoadFile(path);
    if (!status.ok()) {
      std::fprintf(stderr, "sample reference data: %s\n",
                   status.message().c_str());
      std::abort();
    }
  });
}

const dv_core_ns::SeriesID& SampleSeries(int exchangeId, std::string_view key) {
  InstallSampleReferenceData();
  const dv_core_ns::SeriesRecord* record =
      dv_core_ns::ReferenceData::Current().FindSeries(exchangeId, key);
  if (record == nullptr) {
    std::fprintf(stderr, "sample reference data: no series %d %.*s\n",
                 exchangeId, static_cast<int>(key.size()), key.data());
    std::abort();
  }
  return *record->series;
}

}  // namespace nvshared::testing
