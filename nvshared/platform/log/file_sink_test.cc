#include "nvshared/platform/log/file_sink.h"

#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/testing/temp_dir.h"

namespace dv_log {
namespace {

using nvshared::testing::ReadFile;
using nvshared::testing::TempDir;

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

LogRecord Record(const std::string& text, int severity, unsigned int code) {
  return LogRecord{std::chrono::system_clock::now(), LogSeverity{severity},
                   code, text};
}

TEST(FileSink, AppendsOneLinePerRecord) {
  TempDir dir;
  const auto path = dir.WriteFile("app.log", "earlier line\n");
  {
    auto sink = FileSink::Open(path.string());
    ASSERT_TRUE(sink.ok()) << sink.status().message();
    (*sink)->Write(Record("two\nlines", -1, 7));
  }
  const std::vector<std::string> lines = SplitLines(ReadFile(path));
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], "earlier line");
  EXPECT_TRUE(std::regex_match(
      lines[1], std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z )"
                           R"(sev=-1 code=7 two\\nlines)")))
      << lines[1];
}

TEST(FileSink, OpenFailureNamesThePathAndTheReason) {
  TempDir dir;
  const std::string path = (dir.path() / "missing" / "app.log").string();
  auto sink = FileSink::Open(path);
  ASSERT_FALSE(sink.ok());
  EXPECT_EQ(sink.status().message(),
            "cannot open log file '" + path +
                "' for appending: No such file or directory");
}

// Long lines from several threads, through two sinks on one new file (as two
// processes would write), all arrive whole.
TEST(FileSinkConcurrency, LinesNeverInterleave) {
  TempDir dir;
  const std::string path = (dir.path() / "shared.log").string();
  auto first = FileSink::Open(path);
  auto second = FileSink::Open(path);
  ASSERT_TRUE(first.ok() && second.ok());

  constexpr int kThreads = 4;
  constexpr int kPerThread = 100;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    FileSink* sink = (t % 2 == 0 ? *first : *second).get();
    threads.emplace_back([sink, t] {
      const std::string text(3000, static_cast<char>('a' + t));
      for (int i = 0; i < kPerThread; ++i) sink->Write(Record(text, t, 0));
    });
  }
  for (std::thread& t : threads) t.join();

  const std::vector<std::string> lines = SplitLines(ReadFile(path));
  EXPECT_EQ(lines.size(), static_cast<std::size_t>(kThreads * kPerThread));
  for (const std::string& line : lines) {
    const std::size_t start = line.find(" code=0 ") + 8;
    ASSERT_EQ(line.size() - start, 3000u) << line.substr(0, 80);
    EXPECT_EQ(line.find_first_not_of(line[start], start), std::string::npos);
  }
}

}  // namespace
}  // namespace dv_log
