#include "nvshared/platform/log/logger.h"

#include <climits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/platform/log/memory_sink.h"

namespace dv_log {
namespace {

TEST(FormatLogLine, WritesEachFieldInItsPlace) {
  struct Case {
    long long millis;
    int severity;
    unsigned int code;
    std::string text;
    std::string expected;
  };
  const Case cases[] = {
      {1709285400125, -1, 7, "Trader Client: boom",
       "2024-03-01T09:30:00.125Z sev=-1 code=7 Trader Client: boom"},
      {-1, INT_MIN, UINT_MAX, "",
       "1969-12-31T23:59:59.999Z sev=-2147483648 code=4294967295 "},
      {0, INT_MAX, 3000, "a\nb\r\x01\tc\\d\xe2\x82\xac",
       "1970-01-01T00:00:00.000Z sev=2147483647 code=3000 "
       "a\\nb\\r\\x01\tc\\d\xe2\x82\xac"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.expected);
    const LogRecord record{std::chrono::system_clock::time_point(
                               std::chrono::milliseconds(c.millis)),
                           LogSeverity{c.severity}, c.code, c.text};
    EXPECT_EQ(FormatLogLine(record), c.expected);
  }
}

TEST(Logger, PassesSeverityCodeAndTextThroughUnchanged) {
  auto sink = std::make_shared<MemorySink>();
  Logger logger(sink);
  logger.Log("text", LogSeverity{INT_MIN}, UINT_MAX);
  logger.Log(nullptr, LogSeverity{3}, 0);  // no text: an empty one
  const std::vector<LogRecord> records = sink->Records();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(static_cast<int>(records[0].severity), INT_MIN);
  EXPECT_EQ(records[0].code, UINT_MAX);
  EXPECT_EQ(records[0].text + "|" + records[1].text, "text|");
}

TEST(Logger, SetSinkReturnsThePreviousAndNullDiscards) {
  auto first = std::make_shared<MemorySink>();
  auto second = std::make_shared<MemorySink>();
  Logger logger(first);
  logger.Log("one", LogSeverity{0}, 0);
  EXPECT_EQ(logger.SetSink(second), first);
  logger.Log("two", LogSeverity{0}, 0);
  EXPECT_EQ(logger.SetSink(nullptr), second);
  logger.Log("lost", LogSeverity{0}, 0);

  EXPECT_EQ(first->Texts(), std::vector<std::string>{"one"});
  EXPECT_EQ(second->Texts(), std::vector<std::string>{"two"});
  EXPECT_NE(Logger().sink(), nullptr);  // standard error by default
}

TEST(Logger, SwallowsWhatASinkThrows) {
  struct ThrowingSink : LogSink {
    void Write(const LogRecord&) override { throw std::runtime_error("full"); }
  };
  Logger logger(std::make_shared<ThrowingSink>());
  EXPECT_NO_THROW(logger.Log("x", LogSeverity{0}, 0));
}

// Threads log while another swaps the sink between two memory sinks: every
// record lands in exactly one, and each thread's records keep their order.
TEST(LoggerConcurrency, LogAndSetSinkFromManyThreads) {
  constexpr int kThreads = 6;
  constexpr int kPerThread = 400;
  auto a = std::make_shared<MemorySink>();
  auto b = std::make_shared<MemorySink>();
  Logger logger(a);

  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&logger, t] {
      for (unsigned int i = 0; i < kPerThread; ++i) {
        logger.Log("x", LogSeverity{t}, i);
      }
    });
  }
  threads.emplace_back([&] {
    for (int i = 0; i < 200; ++i) logger.SetSink(i % 2 == 0 ? b : a);
  });
  for (std::thread& t : threads) t.join();

  std::map<int, int> perThread;
  for (const auto& sink : {a, b}) {
    std::map<int, long long> last;
    for (const LogRecord& record : sink->Records()) {
      const int t = static_cast<int>(record.severity);
      ++perThread[t];
      EXPECT_LT(last.try_emplace(t, -1).first->second, record.code);
      last[t] = record.code;
    }
  }
  ASSERT_EQ(perThread.size(), static_cast<std::size_t>(kThreads));
  for (const auto& [t, count] : perThread) EXPECT_EQ(count, kPerThread) << t;
}

}  // namespace
}  // namespace dv_log
