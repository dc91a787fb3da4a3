#include "nvshared/platform/os/profile_file.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/testing/temp_dir.h"

namespace nvshared::os {
namespace {

std::string Get(const ProfileFile& p, const char* section, const char* key,
                std::size_t size = 64, const char* def = "dflt") {
  std::vector<char> buffer(size + 1, 'Z');
  const std::size_t n = p.GetString(section, key, def, buffer.data(), size);
  EXPECT_EQ(buffer[n], '\0');
  return std::string(buffer.data(), n);
}

TEST(ProfileFileTest, LookupRules) {
  const ProfileFile p = ProfileFile::Parse(
      "orphan=lost\r\n"
      "  [ First ]  \r\n"
      "; Key=comment\r\n"
      "  Key  =  spaced value  \r\n"
      "key=second entry ignored\r\n"
      "Quoted=\"  kept  \"\n"
      "Single='x'\n"
      "Mismatch=\"x'\n"
      "Bare\n"
      "Empty=\n"
      "[first]\n"
      "Other=from repeat\n"
      "[No close\n"
      "[Second]\rA=1\r");
  struct Case {
    const char* section;
    const char* key;
    std::string expected;
  } cases[] = {
      {"first", "KEY", "spaced value"},  // case ignored; first entry wins
      {"FIRST", "quoted", "  kept  "},
      {"First", "Single", "x"},
      {"First", "Mismatch", "\"x'"},
      {"First", "Bare", "dflt"},   // no "=": no value
      {"First", "Empty", ""},      // a value, empty
      {"First", "Other", "dflt"},  // only the first section is read
      {"First", "orphan", "dflt"},
      {"Second", "a", "1"},  // lone CR ends lines
      {"Missing", "Key", "dflt"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.section) + "/" + c.key);
    EXPECT_EQ(Get(p, c.section, c.key), c.expected);
  }
  EXPECT_EQ(p.section_names(),
            (std::vector<std::string>{"First", "first", "Second"}));
}

TEST(ProfileFileTest, ValuesAreCutToTheBuffer) {
  const ProfileFile p = ProfileFile::Parse("[s]\nk=abcdef\n");
  EXPECT_EQ(Get(p, "s", "k", 7), "abcdef");
  EXPECT_EQ(Get(p, "s", "k", 6), "abcde");
  EXPECT_EQ(Get(p, "s", "k", 1), "");
  EXPECT_EQ(Get(p, "s", "none", 3, "default"), "de");
  char untouched = 'Z';
  EXPECT_EQ(p.GetString("s", "k", "", &untouched, 0), 0u);
  EXPECT_EQ(untouched, 'Z');
}

TEST(ProfileFileTest, SectionNamesAreCutLikeTheFileApi) {
  const ProfileFile p = ProfileFile::Parse("[ab]\n[cde]\n[]\n[f]\n");
  struct Case {
    std::size_t size;
    std::size_t result;
    std::string stored;  // including the terminating NULs
  } cases[] = {
      {16, 9, std::string("ab\0cde\0f\0\0", 10)},
      {10, 9, std::string("ab\0cde\0f\0\0", 10)},
      {9, 7, std::string("ab\0cde\0\0\0", 9)},  // f is cut to nothing
      {6, 4, std::string("ab\0c\0\0", 6)},      // cde cut to c
      {2, 0, std::string("\0\0", 2)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.size);
    std::vector<char> buffer(c.size, 'Z');
    EXPECT_EQ(p.GetSectionNames(buffer.data(), c.size), c.result);
    const std::size_t stored = std::min(c.stored.size(), c.size);
    EXPECT_EQ(std::string(buffer.data(), stored), c.stored.substr(0, stored));
  }
}

TEST(ProfileFileTest, ReadReportsAMissingFile) {
  nvshared::testing::TempDir dir;
  const auto missing = ProfileFile::Read((dir.path() / "none.ini").string());
  ASSERT_FALSE(missing.ok());
  EXPECT_NE(missing.status().message().find("none.ini: cannot open the file"),
            std::string::npos);
  const auto read =
      ProfileFile::Read(dir.WriteFile("a.ini", "[x]\nk=v\n").string());
  ASSERT_TRUE(read.ok());
  EXPECT_EQ(Get(*read, "X", "K"), "v");
}

}  // namespace
}  // namespace nvshared::os
