#include "nvshared/platform/os/shared_object.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "nvshared/testing/temp_dir.h"

namespace nvshared::os {
namespace {

TEST(ListMatchingFiles, MatchesRegularFilesInNameOrder) {
  testing::TempDir dir;
  for (const char* name :
       {"b.so", "a.so", "B.so", "c.so.1", ".hidden.so", "notes.txt", "a.so~"}) {
    dir.WriteFile(name, "x");
  }
  std::filesystem::create_directory(dir.path() / "d.so");
  const std::string folder = dir.path().string();
  struct Case {
    const char* pattern;
    std::vector<std::string> names;
  } const cases[] = {
      // Byte order: capitals first; directories and dot files never match.
      {"*.so", {"B.so", "a.so", "b.so"}},
      {"?.so*", {"B.so", "a.so", "a.so~", "b.so", "c.so.1"}},
      {"[ab].so", {"a.so", "b.so"}},
      {"*.dll", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.pattern);
    EXPECT_EQ(ListMatchingFiles(folder, c.pattern), c.names);
  }
  EXPECT_TRUE(ListMatchingFiles(folder + "/absent", "*").empty());
}

}  // namespace
}  // namespace nvshared::os
