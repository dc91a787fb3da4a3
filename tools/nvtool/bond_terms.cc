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

std::string DayCountChoices() {
  std::string text;
  for (int i = 0; i <= 5; ++i) {
    text +=
        (i ? ", " : "") + std::to_string(i) + "=" +
        nv_ns::UDPEnumNames::GetDayCountTypeString(nv_ns::UDPDayCountType(i));
  }
  return text;
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
      "--daycount",
      "unknown day count '" + text + "'; give one of " + DayCountChoices());
}

CLI::Option* AddDayCountOption(CLI::App& command, std::string& value,
                               const std::string& defaultText) {
  const CLI::Validator known(
      [](std::string& text) -> std::string {
        try {
          ParseDayCount(text);
          return "";
        } catch (const CLI::ValidationError&) {
          return "unknown day count '" + text + "'; give one of " +
                 DayCountChoices();
        }
      },
      "");
  return command
      .add_option(
          "--daycount", value,
          "Day count, by number or by name in any case: " + DayCountChoices())
      ->check(known)
      ->type_name("DAYCOUNT")
      ->default_str(defaultText);
}

}  // namespace nvtool
