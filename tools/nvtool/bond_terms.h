// What the bond commands (yield, price, column) read and print alike:
// dates as YYYY-MM-DD, day counts by number or name, and numbers with a
// fixed count of decimals.
#ifndef NVSHARED_TOOLS_NVTOOL_BOND_TERMS_H_
#define NVSHARED_TOOLS_NVTOOL_BOND_TERMS_H_

#include <string>

#include <CLI/CLI.hpp>

#include "nvshared/platform/utils/udp_date_time.h"

namespace nvtool {

// `value` with `decimals` decimals, whole however large.
std::string Fixed(double value, int decimals);

// A real date written YYYY-MM-DD, or a CLI::ValidationError naming `option`.
nv_ns::UDPDateTime ParseDate(const std::string& option,
                             const std::string& text);

// A day-count number 0..5 or its name in any case ("Actual/360"), or a
// CLI::ValidationError naming --daycount.
int ParseDayCount(const std::string& text);

// The day counts as the library names them, each after its number:
// "0=Actual/Actual, 1=Actual/360, ...".
std::string DayCountChoices();

// Adds --daycount to `command`: a number or a name, checked as it is
// parsed, kept as given in `value`. `defaultText` is what help shows.
CLI::Option* AddDayCountOption(CLI::App& command, std::string& value,
                               const std::string& defaultText);

}  // namespace nvtool

#endif  // NVSHARED_TOOLS_NVTOOL_BOND_TERMS_H_
