// ReadTestTable: rows of test cases kept as data in a folder's testdata/,
// for table-driven tests whose golden names, log lines or bytes are long.
// The file format, one row a line:
//   # a comment line; blank lines are skipped too
//   7 | ESH4 | products | ES Mar14
//       a line that starts with blanks continues the row above it
// Fields are separated by '|' and trimmed of blanks; the last field takes
// the rest of the row, '|' included, so that hex strings keep their
// separators. A field written in double quotes keeps its blanks. Each call
// reads the file afresh; nothing is shared between threads.
#ifndef NVSHARED_TESTING_TEST_TABLE_H_
#define NVSHARED_TESTING_TEST_TABLE_H_

#include <string>
#include <string_view>
#include <vector>

namespace nvshared::testing {

struct TestRow {
  std::string where;  // "file:line", for SCOPED_TRACE
  std::vector<std::string> fields;
  const std::string& operator[](std::size_t i) const { return fields[i]; }
};

// The rows of `path` (relative to the repository's root), each split into
// exactly `fields` fields. A file that cannot be read, or holds no row, or a
// row with fewer fields, fails the calling test (the bad row is skipped).
std::vector<TestRow> ReadTestTable(std::string_view path, std::size_t fields);

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_TEST_TABLE_H_
