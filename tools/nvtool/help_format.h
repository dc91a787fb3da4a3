// How nvtool speaks to its user outside a command's own output: the help
// pages of the tool and of each command, and the one line a usage error
// prints. Every command gets both from here, so they read alike.
#ifndef NVSHARED_TOOLS_NVTOOL_HELP_FORMAT_H_
#define NVSHARED_TOOLS_NVTOOL_HELP_FORMAT_H_

#include <string>

#include <CLI/CLI.hpp>

namespace nvtool {

// Help pages that fit 80 columns (79 wide, so no terminal wraps them). A
// command's description is a one-line summary (listed by `nvtool --help`), then
// a blank line and the details. Each option shows its metavariable
// (type_name(), cut before the first ':', or option_text() where set), then its
// description, "; required" and its default when it has one and the description
// does not say it: default_str(), or "off" for a flag. A command's footer is
// its example: the command line, then optionally a line saying what it shows.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;
};

// The metavariable `option` shows in help; "" for a flag.
std::string Metavariable(const CLI::Option& option);

// `text` folded into lines of at most `width` columns, for output from
// column `column` on: the first line goes on from there, the next ones
// begin with `indent` spaces; the last ends in a newline. Words longer
// than a line stay whole.
std::string Wrap(const std::string& text, std::size_t indent,
                 std::size_t column, std::size_t width = 79);

// The one line a usage error prints: "nvtool: <command>: <message>; see
// 'nvtool <command> --help'", without the command where none was named.
// Line breaks in `message` become spaces, a value the parser could not
// convert reads "<option>: Value <text> not a number", one left without
// its value "<option>: needs a value, <METAVARIABLE>", and a message that
// already begins with "<command>: " does not get it twice.
std::string UsageErrorLine(const std::string& command, std::string message);

}  // namespace nvtool

#endif  // NVSHARED_TOOLS_NVTOOL_HELP_FORMAT_H_
