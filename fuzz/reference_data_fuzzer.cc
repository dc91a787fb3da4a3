// Reads arbitrary bytes as a reference-data JSON document. Every input must
// end in a store or a clear error; nothing may crash or leak.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "nvshared/platform/core/reference_data.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  auto parsed = dv_core_ns::ReferenceData::ParseJson(text);
  if (!parsed.ok() && parsed.status().message().empty()) std::abort();
  return 0;
}
