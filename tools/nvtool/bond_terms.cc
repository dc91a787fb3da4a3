#include "tools/nvtool/bond_terms.h"

#include <cmath>
#include <cstdio>

#include <CLI/CLI.hpp>

#include "nvshared/internal/ascii.h"
#include "nvshared/udp/udp_enums.h"

namespace nvtool {

std::string Fixed(double value, int decimals) {
  const int n = std::snprintf(nullptr, 0, "%.*f", decimals, value);
  std::string text(n > 0 ? static_cast<std::size_t>(n) : 0, '\0');
  std::snprintf(text.data(), text.size() + 1, "%.*f", decimals, value);
  return text;
}

nv_ns::UDPDateTime ParseDate(const std::string& option,
                             const std::string& text) {
  const auto parsed = nvshared::internal::ParseIsoDate(text);
  const nv_ns::UDPDateTime date =
      parsed ? nv_ns::UDPDateTime(parsed->year, parsed->month, parsed->day, 0,
                                  0, 0)
             : nv_ns::UDPDateTime(std::nan(""));
  if (date.GetStatus() != nv_ns::UDPDateTime::valid) {
    throw CLI::ValidationError(option,
                               "not a date in the form YYYY-MM-DD: " + text);
  }
  return date;
}

int ParseDayCount(const std::string& text) {
  for (int i = 0; i <= 5; ++i) {
    const std::string& name =
        nv_ns::UDPEnumNames::GetDayCountTypeString(nv_ns::UDPDayCountType(i));
    if (text == std::to_string(i) ||
        nvshared::internal::AsciiEqualIgnoreCase(text, name)) {
      return i;
    }
  }
  throw CLI::ValidationError(
      "--daycount", "unknown day count '" + text +
                        "' (0 Actual/Actual, 1 Actual/360, 2 30/360, 3 "
                        "30/365, 4 30E/360, 5 Actual/365)");
}

}  // namespace nvtool
