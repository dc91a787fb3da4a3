#include "nvshared/platform/utils/exception_handler.h"

#include <algorithm>
#include <condition_variable>
#include <iterator>
#include <mutex>
#include <thread>

#include "nvshared/platform/log/logger.h"

namespace nv_ns {

namespace {

// The registered handlers and the calls into them that are running now.
// Remove waits until no other thread is inside the handler it took out, so
// that a host may delete a handler as soon as Remove returns.
struct Chain {
  struct Call {
    ExceptionHandler* handler;
    std::thread::id thread;
  };

  std::mutex mutex;
  std::condition_variable callEnded;
  std::vector<ExceptionHandler*> handlers{&ExceptionHandler::s_defaultHandler};
  std::vector<Call> running;

  bool Registered(ExceptionHandler* handler) const {
    return std::find(handlers.begin(), handlers.end(), handler) !=
           handlers.end();
  }
  bool RunningElsewhere(ExceptionHandler* handler) const {
    const std::thread::id self = std::this_thread::get_id();
    return std::any_of(running.begin(), running.end(), [&](const Call& call) {
      return call.handler == handler && call.thread != self;
    });
  }
};

Chain& TheChain() {
  // Never destroyed: reports raised while statics are torn down at exit
  // still find it.
  static Chain* const chain = new Chain();
  return *chain;
}

}  // namespace

ExceptionHandler ExceptionHandler::s_defaultHandler;

ExceptionHandler::~ExceptionHandler() = default;

void ExceptionHandler::OnException(unsigned int code, const char* text) {
  dv_log::GetCustomLog()->Log(text, dv_log::LogSeverity{-1}, code);
}

void ExceptionHandler::AddExceptionHandler(ExceptionHandler& handler) {
  Chain& chain = TheChain();
  std::lock_guard<std::mutex> lock(chain.mutex);
  if (std::find(chain.handlers.begin(), chain.handlers.end(), &handler) ==
      chain.handlers.end()) {
    chain.handlers.push_back(&handler);
  }
}

void ExceptionHandler::RemoveExceptionHandler(ExceptionHandler& handler) {
  Chain& chain = TheChain();
  std::unique_lock<std::mutex> lock(chain.mutex);
  std::erase(chain.handlers, &handler);
  // A call on this thread is the handler removing itself (or a handler it
  // called): waiting for it would never end.
  chain.callEnded.wait(lock, [&] { return !chain.RunningElsewhere(&handler); });
}

void ExceptionHandler::Raise(unsigned int code, const char* text) {
  if (text == nullptr) text = "";
  Chain& chain = TheChain();
  const std::thread::id self = std::this_thread::get_id();
  // Handlers run without the lock, so that one which waits for a user (a
  // message box) holds up no other thread's registration or report. The
  // call is entered in `running` under the lock in the same step as the
  // membership test, so a Remove either sees it and waits, or comes first
  // and the handler is skipped.
  for (ExceptionHandler* handler : Handlers()) {
    {
      std::lock_guard<std::mutex> lock(chain.mutex);
      if (!chain.Registered(handler)) continue;
      chain.running.push_back({handler, self});
    }
    try {
      handler->OnException(code, text);
    } catch (...) {
      // A report must not turn into a new fault; the next handler still
      // hears of it.
    }
    {
      std::lock_guard<std::mutex> lock(chain.mutex);
      const auto call = std::find_if(
          chain.running.rbegin(), chain.running.rend(), [&](const auto& c) {
            return c.handler == handler && c.thread == self;
          });
      chain.running.erase(std::next(call).base());
    }
    chain.callEnded.notify_all();
  }
}

std::vector<ExceptionHandler*> ExceptionHandler::Handlers() {
  Chain& chain = TheChain();
  std::lock_guard<std::mutex> lock(chain.mutex);
  return chain.handlers;
}

}  // namespace nv_ns
