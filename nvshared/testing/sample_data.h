// The bundled sample reference data (data/sample-refdata.json), for test
// binaries whose cases are the shapes of contract it holds. A binary installs
// either this or the reference fixture, never both: the library's caches
// never refresh.
#ifndef NVSHARED_TESTING_SAMPLE_DATA_H_
#define NVSHARED_TESTING_SAMPLE_DATA_H_

#include <string_view>

#include "nvshared/platform/core/ids.h"

namespace nvshared::testing {

// Loads and installs the sample the first time; later calls do nothing. A
// sample that does not load fails the test binary at once.
void InstallSampleReferenceData();

// A series of the sample by exchange and key; aborts the test binary if the
// sample has no such series.
const dv_core_ns::SeriesID& SampleSeries(int exchangeId, std::string_view key);

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_SAMPLE_DATA_H_
