#include "nvshared/platform/os/atomic_file.h"

#include <filesystem>
#include <set>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "nvshared/testing/temp_dir.h"

namespace nvshared::os {
namespace {

namespace fs = std::filesystem;
using nvshared::testing::ReadFile;
using nvshared::testing::TempDir;

mode_t ModeOf(const fs::path& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 ? st.st_mode & 07777 : 0;
}

TEST(ReplaceFileAtomically, KeepsModeAndLinksAndRefusesOtherTargets) {
  TempDir dir;
  const mode_t oldMask = ::umask(027);

  // A new file gets 0666 less the umask, like any file the process makes.
  const fs::path fresh = dir.path() / "fresh";
  ASSERT_TRUE(ReplaceFileAtomically(fresh, "one").ok());
  EXPECT_EQ(ModeOf(fresh), 0640u);

  // A replaced file keeps its mode.
  const fs::path shared = dir.WriteFile("shared", "old");
  ::chmod(shared.c_str(), 0664);
  ASSERT_TRUE(ReplaceFileAtomically(shared, "new").ok());
  EXPECT_EQ(ModeOf(shared), 0664u);
  EXPECT_EQ(ReadFile(shared), "new");

  // Through a link (relative, two hops) the target changes; the links stay.
  fs::create_directory(dir.path() / "real");
  const fs::path target = dir.WriteFile("real/settings.ini", "old");
  fs::create_symlink("real/settings.ini", dir.path() / "hop");
  fs::create_symlink(dir.path() / "hop", dir.path() / "link");
  ASSERT_TRUE(ReplaceFileAtomically(dir.path() / "link", "new").ok());
  EXPECT_TRUE(fs::is_symlink(dir.path() / "link"));
  EXPECT_TRUE(fs::is_symlink(dir.path() / "hop"));
  EXPECT_EQ(ReadFile(target), "new");

  // A directory is not replaced.
  fs::create_directory(dir.path() / "folder");
  const Status refused = ReplaceFileAtomically(dir.path() / "folder", "x");
  EXPECT_FALSE(refused.ok());
  EXPECT_NE(refused.message().find("not a regular file"), std::string::npos);
  EXPECT_TRUE(fs::is_directory(dir.path() / "folder"));

  // Nothing is left behind beside the files.
  int entries = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(dir.path()))
    ++entries;
  EXPECT_EQ(entries, 6);  // fresh, shared, real/, hop, link, folder/
  ::umask(oldMask);
}

// A save clears the temporaries of processes killed while saving the same
// file; a live process's temporary, other files' and look-alikes stay.
TEST(ReplaceFileAtomically, RemovesTemporariesOfProcessesThatAreGone) {
  TempDir dir;
  const pid_t child = ::fork();
  if (child == 0) ::_exit(0);
  ASSERT_GT(child, 0);
  ::waitpid(child, nullptr, 0);
  const std::string dead = std::to_string(child);
  const std::string live = std::to_string(::getppid());
  for (const std::string& name :
       {"names.tmp." + dead + ".0", "names.tmp." + dead + ".17",
        "names.tmp." + live + ".0", "other.tmp." + dead + ".0",
        "names.tmp." + dead, "names.tmp.x" + dead + ".0"}) {
    dir.WriteFile(name, "partial");
  }
  ASSERT_TRUE(ReplaceFileAtomically(dir.path() / "names", "whole").ok());
  std::set<std::string> left;
  for (const auto& entry : fs::directory_iterator(dir.path())) {
    left.insert(entry.path().filename().string());
  }
  EXPECT_EQ(left,
            (std::set<std::string>{
                "names", "names.tmp." + live + ".0", "other.tmp." + dead + ".0",
                "names.tmp." + dead, "names.tmp.x" + dead + ".0"}));
}

}  // namespace
}  // namespace nvshared::os
