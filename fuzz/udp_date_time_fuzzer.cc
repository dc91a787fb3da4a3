// Feeds arbitrary text to UDPDateTime::ParseDateTime under each flag, and
// what parses through the formatters and back: parsing must never crash,
// and a parsed value must read back as itself.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "nvshared/platform/utils/udp_date_time.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  for (unsigned long flags : {0ul, 1ul, 2ul}) {
    nv_ns::UDPDateTime value;
    if (!value.ParseDateTime(text.c_str(), flags, 1024)) continue;
    const std::string shown = value.Format(0, 1024);
    nv_ns::UDPDateTime back;
    if (!back.ParseDateTime(shown.c_str(), 0, 1024) || !(back == value)) {
      std::abort();
    }
  }
  // The text as a strftime-like format, of a fixed date.
  const nv_ns::UDPDateTime fixed(2024, 2, 29, 13, 5, 9);
  (void)fixed.Format(text.c_str());
  return 0;
}
