// Data files kept beside a folder's tests, under its testdata/: long golden
// texts, inputs and tables of cases that read better as files than as
// string literals. Found in the source tree the tests were built from. Plain
// functions; each call reads the file afresh, nothing is shared.
#ifndef NVSHARED_TESTING_TEST_DATA_H_
#define NVSHARED_TESTING_TEST_DATA_H_

#include <string>
#include <string_view>
#include <vector>

namespace nvshared::testing {

// The whole file `relative` to the top of the source tree, such as
// "nvshared/mgt/testdata/sections.mgt". A file that cannot be read fails the
// test and gives "".
std::string ReadTestData(std::string_view relative);

// Its lines, for golden texts: lines beginning with '#' are comments and
// left out, and "\t" stands for a tab so that tabs stay visible.
std::vector<std::string> ReadTestDataLines(std::string_view relative);

// Rows of test cases, one a line:
//   # a comment line; blank lines are skipped too
//   7 | ESH4 | products | ES Mar14
//       a line that starts with blanks continues the row above it
// Fields are separated by '|' and trimmed of blanks; the last field takes
// the rest of the row, '|' included, so that hex strings keep their
// separators. A field written in double quotes keeps its blanks.
struct TestRow {
  std::string where;  // "file:line", for SCOPED_TRACE
  std::vector<std::string> fields;
  const std::string& operator[](std::size_t i) const { return fields[i]; }
};

// The rows of `relative`, each split into exactly `fields` fields. A file
// that cannot be read, or holds no row, or a row with fewer fields, fails
// the calling test (the bad row is skipped).
std::vector<TestRow> ReadTestTable(std::string_view relative,
                                   std::size_t fields);

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_TEST_DATA_H_
