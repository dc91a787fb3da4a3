#include "nvshared/platform/utils/registry_mgr.h"

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/testing/kill_during_save.h"
#include "nvshared/testing/temp_dir.h"

namespace {

using nvshared::testing::ReadFile;
using nvshared::testing::TempDir;

// Each case gets the machine store empty and unbound, and leaves it so.
class RegistryMgrTest : public ::testing::Test {
 protected:
  void SetUp() override { Store().Clear(); }
  void TearDown() override { Store().Clear(); }
  static CRegistryMgr& Store() { return CRegistryMgr::Instance(2); }
  TempDir dir_;
};

TEST(RegistryYesNoTest, FirstLetterRule) {
  for (const char* yes : {"", "Y", "y", "yes", "Yikes"}) {
    EXPECT_TRUE(CRegistryMgr::GetYesNoValue(yes)) << yes;
  }
  for (const char* no : {"N", "n", "1", "true", " y"}) {
    EXPECT_FALSE(CRegistryMgr::GetYesNoValue(no)) << no;
  }
  EXPECT_TRUE(CRegistryMgr::GetYesNoValue(nullptr));
}

TEST_F(RegistryMgrTest, ValuesByTypeAndCase) {
  CRegistryMgr& s = Store();
  EXPECT_TRUE(s.WriteRegInt("Section", "Count", -42));
  EXPECT_EQ(s.ReadRegInt("SECTION", "count", 7, 2, nullptr), -42);
  bool found = true;
  EXPECT_EQ(s.ReadRegInt("Section", "missing", 7, 2, &found), 7);
  EXPECT_FALSE(found);
  s.WriteRegString("Section", "Text", "not a number");
  EXPECT_EQ(s.ReadRegInt("Section", "Text", 7), 7);
  s.WriteRegString("Section", "Huge", "99999999999");
  EXPECT_EQ(s.ReadRegInt("Section", "Huge", 7), 7);

  double d = 0.1 + 0.2;
  EXPECT_TRUE(s.ReadWriteRegDouble(false, "Section", "D", d));
  double back = 0;
  EXPECT_TRUE(s.ReadWriteRegDouble(true, "section", "d", back));
  EXPECT_EQ(back, d);
  EXPECT_FALSE(s.ReadWriteRegDouble(true, "Section", "Text", back));
  EXPECT_EQ(back, d);

  std::string text = "kept";
  EXPECT_FALSE(s.ReadWriteRegString(true, "Section", "none", text));
  EXPECT_EQ(text, "kept");
  EXPECT_TRUE(s.ReadWriteRegString(false, "Other", "T", text));
  EXPECT_TRUE(s.ExistRegValue("OTHER", "t"));
  EXPECT_FALSE(s.ExistRegValue("Other", "u"));

  // The scope argument picks the store; the user store stays apart.
  EXPECT_FALSE(CRegistryMgr::Instance(1).ExistRegValue("Other", "T"));
  EXPECT_TRUE(CRegistryMgr::Instance(1).ExistRegValue("Other", "T", 2));

  // The registry key is put in front of every section.
  s.SetRegistryKey("Software\\Dravane\\");
  EXPECT_FALSE(s.ExistRegValue("Other", "T"));
  s.WriteRegString("NVConfigDir", "NVConfigDir", "/etc/nv");
  s.SetRegistryKey("");
  EXPECT_EQ(
      s.ReadRegString("software\\dravane\\nvconfigdir", "NVConfigDir", ""),
      "/etc/nv");
}

TEST_F(RegistryMgrTest, FileRoundTripKeepsAnyText) {
  const std::string path = (dir_.path() / "machine.ini").string();
  const std::string odd = "a=b;[c]\\d\n\r\te ";
  Store().WriteRegString("Before", "Name", "in memory first");
  ASSERT_TRUE(Store().SetFilePath(path).ok());
  EXPECT_TRUE(Store().WriteRegString("Odd [section]", "key=x", odd));
  Store().Clear();
  ASSERT_TRUE(Store().SetFilePath(path).ok());
  EXPECT_EQ(Store().ReadRegString("odd [SECTION]", "KEY=X", ""), odd);
  EXPECT_EQ(Store().ReadRegString("Before", "Name", ""), "in memory first");
}

TEST_F(RegistryMgrTest, CorruptFileIsReportedAndLeftAlone) {
  struct Case {
    const char* contents;
    const char* message;
  } cases[] = {
      {"k=v\n", ":1: value outside a section"},
      {"[s]\nno equals sign\n", ":2: broken value line"},
      {"[s\n", ":1: broken section line"},
      {"[s]\nk=bad\\q\n", ":2: broken value line"},
      {"[s]\nk=\\x4\n", ":2: broken value line"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.contents);
    Store().Clear();
    Store().WriteRegString("Mem", "Kept", "yes");
    const auto path = dir_.WriteFile("bad.ini", c.contents);
    const nvshared::Status status = Store().SetFilePath(path.string());
    ASSERT_FALSE(status.ok());
    EXPECT_NE(status.message().find(path.string() + c.message),
              std::string::npos)
        << status.message();
    // Writes go on in memory; the file is never replaced.
    EXPECT_TRUE(Store().WriteRegString("Mem", "More", "x"));
    EXPECT_EQ(Store().ReadRegString("Mem", "Kept", ""), "yes");
    EXPECT_EQ(ReadFile(path), c.contents);
  }
}

TEST_F(RegistryMgrTest, UnwritableFileKeepsTheValueInMemory) {
  ASSERT_TRUE(
      Store().SetFilePath((dir_.path() / "no-dir" / "s.ini").string()).ok());
  EXPECT_FALSE(Store().WriteRegString("S", "K", "v"));
  EXPECT_EQ(Store().ReadRegString("S", "K", ""), "v");
}

TEST_F(RegistryMgrTest, ConcurrencyWritersAndReaders) {
  const std::string path = (dir_.path() / "threads.ini").string();
  ASSERT_TRUE(Store().SetFilePath(path).ok());
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 50; ++i) {
        const std::string name =
            "V" + std::to_string(t) + "_" + std::to_string(i);
        CRegistryMgr::Instance(2).WriteRegInt("Threads", name, i);
        EXPECT_EQ(CRegistryMgr::Instance(2).ReadRegInt("threads", name, -1), i);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  Store().Clear();
  ASSERT_TRUE(Store().SetFilePath(path).ok());
  for (int t = 0; t < 4; ++t) {
    EXPECT_EQ(
        Store().ReadRegInt("Threads", "V" + std::to_string(t) + "_49", -1), 49);
  }
}

// A child process writes one large value back and forth, each write
// replacing the store's file, and is killed at random moments. After every
// kill the file is the store from before or after a write, and binds.
TEST_F(RegistryMgrTest, AKilledWriteLeavesTheOldOrTheNewFileWhole) {
  const std::string oldText(200000, 'o'), newText(200000, 'n');
  nvshared::testing::KillRun run("settings store", dir_.path() / "settings.ini",
                                 5101);
  ASSERT_TRUE(Store().SetFilePath(run.path).ok());
  run.save = [&](bool toNew) {
    return Store().WriteRegString("Kill", "Value", toNew ? newText : oldText);
  };
  run.load = [&](bool isNew) {
    Store().Clear();
    ASSERT_TRUE(Store().SetFilePath(run.path).ok());
    EXPECT_EQ(Store().ReadRegString("Kill", "Value", ""),
              isNew ? newText : oldText);
  };
  nvshared::testing::ExpectKilledSavesLeaveOldOrNew(run);
}

}  // namespace
