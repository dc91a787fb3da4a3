#include "tools/nvtool/help_format.h"

#include <string>

#include <gtest/gtest.h>

namespace nvtool {
namespace {

TEST(HelpFormatTest, WrapFoldsAtTheWidthAndKeepsLongWordsWhole) {
  const struct {
    std::string text;
    std::size_t indent, column, width;
    std::string wrapped;
  } cases[] = {
      {"one two three", 0, 0, 7, "one two\nthree\n"},
      // A word that ends exactly at the width stays on its line.
      {"abc defg hi", 2, 0, 8, "abc defg\n  hi\n"},
      // The first line goes on from the column given.
      {"aa bb cc", 4, 6, 11, "aa bb\n    cc\n"},
      {"averyveryverylongword x", 0, 0, 8, "averyveryverylongword\nx\n"},
      {"  blanks\tand\nbreaks  ", 0, 0, 79, "blanks and breaks\n"},
      {"", 0, 0, 79, "\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(Wrap(c.text, c.indent, c.column, c.width), c.wrapped);
  }
}

TEST(HelpFormatTest, AUsageErrorIsOneLineNamingTheCommandAndItsHelp) {
  const struct {
    std::string command, message, line;
  } cases[] = {
      {"column", "--coupon: must be a finite number, not nan",
       "nvtool: column: --coupon: must be a finite number, not nan; see "
       "'nvtool column --help'"},
      {"", "unknown command 'x'",
       "nvtool: unknown command 'x'; see 'nvtool --help'"},
      // The parser's conversion failure, said in words.
      {"yield", "Could not convert: --coupon = abc",
       "nvtool: yield: --coupon: Value abc not a number; see 'nvtool yield "
       "--help'"},
      // A message that names its command already does not name it twice.
      {"names", "names: add takes 2 arguments",
       "nvtool: names: add takes 2 arguments; see 'nvtool names --help'"},
      {"name", "names: x", "nvtool: name: names: x; see 'nvtool name --help'"},
      {"", "two\nlines\n", "nvtool: two lines; see 'nvtool --help'"},
      {"yield", "--settle: 1 required DATE missing",
       "nvtool: yield: --settle: needs a value, DATE; see 'nvtool yield "
       "--help'"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message);
    EXPECT_EQ(UsageErrorLine(c.command, c.message), c.line);
  }
}

TEST(HelpFormatTest, MetavariablesAreWordsNotTypeNames) {
  CLI::App app;
  int count = 0;
  double number = 0.0;
  std::string text;
  bool flag = false;
  const struct {
    CLI::Option* option;
    std::string metavariable;
  } cases[] = {
      {app.add_option("--count", count), "N"},
      {app.add_option("--number", number)->check(CLI::Range(0.0, 1.0)),
       "NUMBER"},
      {app.add_option("--text", text), "VALUE"},
      {app.add_option("--date", text)->type_name("DATE"), "DATE"},
      {app.add_option("--set", count)
           ->check(CLI::IsMember({1, 2}))
           ->type_name("N"),
       "N"},
      {app.add_option("--style", text)->check(CLI::IsMember({"a", "b"})),
       "VALUE"},
      {app.add_option("--shown", text)->option_text("WORDS"), "WORDS"},
      {app.add_flag("--flag", flag), ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.option->get_name());
    EXPECT_EQ(Metavariable(*c.option), c.metavariable);
  }
}

}  // namespace
}  // namespace nvtool
