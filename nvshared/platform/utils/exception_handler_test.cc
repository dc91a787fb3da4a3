#include "nvshared/platform/utils/exception_handler.h"

#include <atomic>
#include <functional>
#include <latch>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/testing/report_capture.h"

namespace nv_ns {
namespace {

using nvshared::testing::ReportCapture;

// Records what it hears into a shared journal, after running `action`.
class RecordingHandler : public ExceptionHandler {
 public:
  RecordingHandler(std::vector<std::string>& journal, std::string name)
      : journal_(journal), name_(std::move(name)) {}
  void OnException(unsigned int code, const char* text) override {
    if (action) action();
    journal_.push_back(name_ + " " + std::to_string(code) + ":" + text);
  }
  std::function<void()> action;

 private:
  std::vector<std::string>& journal_;
  std::string name_;
};

TEST(ExceptionHandler, DefaultHandlerIsRegisteredAndLogs) {
  ReportCapture capture;
  EXPECT_EQ(
      ExceptionHandler::Handlers(),
      std::vector<ExceptionHandler*>{&ExceptionHandler::s_defaultHandler});
  ExceptionHandler::Raise(42, "access violation");
  EXPECT_EQ(capture.Logged(),
            std::vector<std::string>{"access violation|-1|42"});
}

TEST(ExceptionHandler, RaiseReachesEachRegisteredHandlerOnceInOrder) {
  ReportCapture restorer;  // puts the chain back as it was
  ExceptionHandler::RemoveExceptionHandler(ExceptionHandler::s_defaultHandler);
  std::vector<std::string> journal;
  RecordingHandler first(journal, "first"), removed(journal, "removed"),
      last(journal, "last");
  first.action = [&] {
    ExceptionHandler::RemoveExceptionHandler(removed);
    throw std::runtime_error("a handler that throws stops no one");
  };
  ExceptionHandler::AddExceptionHandler(first);
  ExceptionHandler::AddExceptionHandler(removed);
  ExceptionHandler::AddExceptionHandler(last);
  ExceptionHandler::AddExceptionHandler(first);  // already there: stays first

  EXPECT_NO_THROW(ExceptionHandler::Raise(1, "a"));
  first.action = nullptr;
  ExceptionHandler::Raise(2, nullptr);
  EXPECT_EQ(journal,
            (std::vector<std::string>{"last 1:a", "first 2:", "last 2:"}));
}

// Three threads raise while two others add handlers, remove them and delete
// them at once. The two handlers registered throughout hear every report
// exactly once. A short-lived one is never entered after its removal has
// returned (in a sanitizer build that would also be a use after free), hears
// at least the reports raised wholly while it was registered, and at most
// those that overlapped that time. The raisers go on until the churners are
// done, and the churners go on until one of theirs has heard a report, so
// that the two overlap however the threads are scheduled.
TEST(ExceptionHandlerConcurrency, RaiseWhileHandlersComeAndGo) {
  constexpr int kRaisers = 3, kPerRaiser = 5000, kMaxPerRaiser = 100000,
                kChurners = 2, kVisits = 2000, kMaxVisits = 50000;
  struct Steady : ExceptionHandler {
    std::vector<std::atomic<int>> hits =
        std::vector<std::atomic<int>>(kRaisers * kMaxPerRaiser);
    void OnException(unsigned int code, const char*) override { ++hits[code]; }
  };
  struct ShortLived : ExceptionHandler {
    std::atomic<bool> removed{false};
    std::atomic<int> calls{0}, late{0};
    void OnException(unsigned int, const char*) override {
      std::this_thread::yield();  // widen the window
      late += removed.load();
      ++calls;
    }
  };
  ReportCapture restorer;  // puts the chain back as it was
  ExceptionHandler::RemoveExceptionHandler(ExceptionHandler::s_defaultHandler);
  Steady first, last;
  ExceptionHandler::AddExceptionHandler(first);
  ExceptionHandler::AddExceptionHandler(last);
  std::atomic<int> started{0}, finished{0}, heard{0}, late{0}, tooFew{0},
      tooMany{0}, churning{kChurners};
  std::vector<int> raised(kRaisers);
  std::latch go(kRaisers + kChurners);
  std::vector<std::thread> threads;
  for (int t = 0; t < kRaisers; ++t) {
    threads.emplace_back([&, t] {
      go.arrive_and_wait();
      int i = 0;
      for (; i < kMaxPerRaiser && (i < kPerRaiser || churning > 0); ++i) {
        ++started;
        ExceptionHandler::Raise(t * kMaxPerRaiser + i, "x");
        ++finished;
      }
      raised[t] = i;
    });
  }
  for (int t = 0; t < kChurners; ++t) {
    threads.emplace_back([&] {
      go.arrive_and_wait();
      for (int i = 0; i < kVisits || (heard == 0 && i < kMaxVisits); ++i) {
        auto handler = std::make_unique<ShortLived>();
        const int before = finished.load();
        ExceptionHandler::AddExceptionHandler(*handler);
        const int from = started.load();
        std::this_thread::yield();
        const int to = finished.load();
        ExceptionHandler::RemoveExceptionHandler(*handler);
        handler->removed = true;
        tooFew += handler->calls < to - from;
        tooMany += handler->calls > started.load() - before;
        std::this_thread::yield();
        heard += handler->calls;
        late += handler->late;
      }  // deleted at once
      --churning;
    });
  }
  for (std::thread& t : threads) t.join();
  int wrong = 0;
  for (int code = 0; code < kRaisers * kMaxPerRaiser; ++code) {
    const int want = code % kMaxPerRaiser < raised[code / kMaxPerRaiser];
    wrong += first.hits[code] != want || last.hits[code] != want;
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_GT(heard.load(), 0);  // the short-lived ones did overlap reports
  EXPECT_EQ(late.load(), 0);
  EXPECT_EQ(tooFew.load(), 0);
  EXPECT_EQ(tooMany.load(), 0);
}

TEST(ExceptionHandler, HandlerMayRemoveItselfWhileRunning) {
  ReportCapture restorer;  // puts the chain back as it was
  ExceptionHandler::RemoveExceptionHandler(ExceptionHandler::s_defaultHandler);
  std::vector<std::string> journal;
  RecordingHandler self(journal, "self");
  self.action = [&self] { ExceptionHandler::RemoveExceptionHandler(self); };
  ExceptionHandler::AddExceptionHandler(self);
  ExceptionHandler::Raise(3, "z");  // must return: no wait for its own call
  ExceptionHandler::Raise(4, "w");
  EXPECT_EQ(journal, std::vector<std::string>{"self 3:z"});
}

}  // namespace
}  // namespace nv_ns
