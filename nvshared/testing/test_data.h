// Data files kept beside a folder's tests, under its testdata/: long golden
// texts and inputs that read better as files than as string literals. Found
// in the source tree the tests were built from. Plain functions; no state.
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

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_TEST_DATA_H_
