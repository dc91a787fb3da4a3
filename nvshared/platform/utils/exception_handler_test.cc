#include "nvshared/platform/utils/exception_handler.h"

#include <atomic>
#include <functional>
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

class Counting : public ExceptionHandler {
 public:
  void OnException(unsigned int, const char*) override { ++count; }
  std::atomic<int> count{0};
};

// Reports raised on several threads while another registers and removes a
// handler: a handler registered throughout hears every report once.
TEST(ExceptionHandlerConcurrency, RaiseWhileRegistering) {
  ReportCapture restorer;  // puts the chain back as it was
  ExceptionHandler::RemoveExceptionHandler(ExceptionHandler::s_defaultHandler);
  Counting steady, coming;
  ExceptionHandler::AddExceptionHandler(steady);

  constexpr int kThreads = 4;
  constexpr int kPerThread = 500;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([] {
      for (int i = 0; i < kPerThread; ++i) ExceptionHandler::Raise(1, "x");
    });
  }
  threads.emplace_back([&coming] {
    for (int i = 0; i < kPerThread; ++i) {
      ExceptionHandler::AddExceptionHandler(coming);
      ExceptionHandler::RemoveExceptionHandler(coming);
    }
  });
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(steady.count, kThreads * kPerThread);
}

// A host removes a handler and deletes it at once, while other threads keep
// raising. No call may still be inside the handler when it is deleted:
// under AddressSanitizer that would be a use after free, and the flag below
// catches it in a plain build.
TEST(ExceptionHandlerConcurrency, RemovedHandlerMayBeDeletedAtOnce) {
  struct Slow : ExceptionHandler {
    std::atomic<bool> removed{false};
    std::atomic<int>* lateCalls = nullptr;
    void OnException(unsigned int, const char*) override {
      std::this_thread::yield();  // widen the window
      if (removed.load()) lateCalls->fetch_add(1);
    }
  };
  ReportCapture restorer;  // puts the chain back as it was
  ExceptionHandler::RemoveExceptionHandler(ExceptionHandler::s_defaultHandler);
  std::atomic<bool> done{false};
  std::atomic<int> lateCalls{0};
  std::vector<std::thread> raisers;
  for (int t = 0; t < 2; ++t) {
    raisers.emplace_back([&done] {
      while (!done.load()) ExceptionHandler::Raise(2, "y");
    });
  }
  for (int i = 0; i < 2000; ++i) {
    auto handler = std::make_unique<Slow>();
    handler->lateCalls = &lateCalls;
    ExceptionHandler::AddExceptionHandler(*handler);
    std::this_thread::yield();
    ExceptionHandler::RemoveExceptionHandler(*handler);
    handler->removed.store(true);
  }
  done.store(true);
  for (std::thread& t : raisers) t.join();
  EXPECT_EQ(lateCalls.load(), 0);
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
