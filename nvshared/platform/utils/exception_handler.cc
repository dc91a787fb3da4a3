#include "nvshared/platform/utils/exception_handler.h"

#include <algorithm>
#include <mutex>

#include "nvshared/platform/log/logger.h"

namespace nv_ns {

namespace {

struct Chain {
  std::mutex mutex;
  std::vector<ExceptionHandler*> handlers{&ExceptionHandler::s_defaultHandler};

  bool Contains(ExceptionHandler* handler) {
    std::lock_guard<std::mutex> lock(mutex);
    return std::find(handlers.begin(), handlers.end(), handler) !=
           handlers.end();
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
  std::lock_guard<std::mutex> lock(chain.mutex);
  std::erase(chain.handlers, &handler);
}

void ExceptionHandler::Raise(unsigned int code, const char* text) {
  if (text == nullptr) text = "";
  Chain& chain = TheChain();
  // Handlers run without the lock, so that one which waits for a user (a
  // message box) holds up no other thread's registration or report.
  for (ExceptionHandler* handler : Handlers()) {
    if (!chain.Contains(handler)) continue;
    try {
      handler->OnException(code, text);
    } catch (...) {
      // A report must not turn into a new fault; the next handler still
      // hears of it.
    }
  }
}

std::vector<ExceptionHandler*> ExceptionHandler::Handlers() {
  Chain& chain = TheChain();
  std::lock_guard<std::mutex> lock(chain.mutex);
  return chain.handlers;
}

}  // namespace nv_ns
