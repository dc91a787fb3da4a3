#include "nvshared/app/app_string_loader.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "nvshared/testing/report_capture.h"

namespace nv_ns {
namespace {

// Saves the loader's names and instance, and puts them back.
class AppStringLoaderTest : public ::testing::Test {
  nvshared::testing::ReportCapture capture_;
};

TEST_F(AppStringLoaderTest, FillsTheTokens) {
  struct Case {
    const char* name;
    const char* altName;
    bool useAlt;
    const char* text;
    const char* expected;
    bool replaced;
  };
  const Case cases[] = {
      {"trader", "", false, "no tokens", "no tokens", false},
      {"trader", "", false, "<CapAppName> and <AppName>", "Trader and trader",
       true},
      {"Trader", "", false, "<CapAppName>/<AppName>", "Trader/Trader", true},
      {"tRADER", "", false, "<CapAppName>", "TRADER", true},
      {"\xc3\xa9quipe", "", false, "<CapAppName>", "\xc3\xa9quipe", true},
      {"ab", "", false, "<AppName><AppName>-<AppName>", "abab-ab", true},
      {"trader", "", false, "<APPNAME> <appName> <AppName",
       "<APPNAME> "
       "<appName> <AppName",
       false},
      {"", "", false, "<CapAppName> <AppName>", "<CapAppName> <AppName>",
       false},
      {"trader", "", true, "<AppName>", "<AppName>", false},
      {"trader", "desk", true, "<CapAppName> <AppName>", "Desk desk", true},
      // The search resumes one byte after each replacement, so a token that
      // the name completes after its first byte is replaced again.
      {"a<App", "", false, "<AppName>Name>", "aa<App", true},
      // A name that starts with the token is not found again; one that holds
      // it further on would loop for ever, so there the search skips the
      // inserted name.
      {"<AppName>!", "", false, "<AppName>", "<AppName>!", true},
      {"x<AppName>", "", false, "<AppName> <AppName>", "x<AppName> x<AppName>",
       true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " | " + c.text);
    AppStringLoader::Instance().SetAppName(c.name, c.altName);
    std::string text = c.text;
    EXPECT_EQ(AppStringLoader::LoadAppString(text, c.useAlt), c.replaced);
    EXPECT_EQ(text, c.expected);
  }
}

TEST_F(AppStringLoaderTest, DestroyWithoutFinalStartsAfreshWithoutNames) {
  AppStringLoader::Instance().SetAppName("trader", "desk");
  AppStringLoader::Destroy(false);
  AppStringLoader::Destroy(true);  // no instance: no effect, not even final
  EXPECT_FALSE(AppStringLoader::HasInstance());

  std::string text = "<AppName>";
  EXPECT_FALSE(AppStringLoader::LoadAppString(text));  // makes no instance
  EXPECT_FALSE(AppStringLoader::HasInstance());
  EXPECT_FALSE(AppStringLoader::LoadAppString("<AppName>", text));
  EXPECT_EQ(text, "<AppName>");
  EXPECT_TRUE(AppStringLoader::HasInstance());
  EXPECT_EQ(AppStringLoader::ConstInstance().AppName(), "");
  EXPECT_EQ(AppStringLoader::ConstInstance().AltAppName(), "");
}

// Shutdown is never undone, so it runs in a child process.
TEST(AppStringLoaderDeathTest, ShutdownIsFinal) {
  const auto shutDown = [] {
    AppStringLoader::Instance().SetAppName("trader", "desk");
    AppStringLoader::Shutdown();
    AppStringLoader::Instance().SetAppName("again", "again");
    std::string text = "<AppName>", copy;
    const bool same = !AppStringLoader::HasInstance() &&
                      !AppStringLoader::LoadAppString(text) &&
                      !AppStringLoader::LoadAppString("<AppName>", copy) &&
                      text == "<AppName>" && copy == "<AppName>";
    std::exit(same ? 0 : 1);
  };
  EXPECT_EXIT(shutDown(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace nv_ns
