// nv_ns::ExceptionHandler: the process-wide chain of exception handlers. A
// component that catches a fault it cannot deal with reports it with Raise;
// every registered handler then hears of it, in the order of registration.
// At start the chain holds s_defaultHandler, which writes the report to the
// process logger; an application that installs its own handler usually
// removes the default one.
//
// Ownership: the chain holds references, not objects; a handler must stay
// alive while registered, and must be removed before it is destroyed. Once
// RemoveExceptionHandler returns, no other thread is inside the handler, so
// it may be deleted at once.
// Threads: Add, Remove and Raise may run on any threads at once; handlers
// run on the thread that raised, with no lock held, so they may take time
// (show a box) and may add or remove handlers. Two handlers must not remove
// each other while both are running on different threads: each would wait
// for the other.
#ifndef NVSHARED_PLATFORM_UTILS_EXCEPTION_HANDLER_H_
#define NVSHARED_PLATFORM_UTILS_EXCEPTION_HANDLER_H_

#include <vector>

#include "nvshared/export.h"

namespace nv_ns {

class NVSHARED_API ExceptionHandler {
 public:
  // constexpr, so that s_defaultHandler is ready before any static
  // initialiser of another file can raise.
  constexpr ExceptionHandler() = default;
  ExceptionHandler(const ExceptionHandler&) = delete;
  ExceptionHandler& operator=(const ExceptionHandler&) = delete;
  virtual ~ExceptionHandler();

  // Hears one report. The default writes `text` to the process logger at
  // severity -1 with `code`. `text` is never null.
  virtual void OnException(unsigned int code, const char* text);

  // Registers `handler` at the end of the chain; a handler already
  // registered stays where it is.
  static void AddExceptionHandler(ExceptionHandler& handler);
  // Takes `handler` out of the chain, if it is there, and waits until no
  // other thread is running it. Called from inside the handler (or from a
  // handler it reached on the same thread), it does not wait for that call.
  static void RemoveExceptionHandler(ExceptionHandler& handler);

  // Delivers a report to every registered handler, in order. A null text is
  // passed as an empty one. A handler taken out of the chain by an earlier
  // handler of the same report is skipped; a handler that throws does not
  // stop the others, and nothing is thrown back to the caller.
  static void Raise(unsigned int code, const char* text);

  // The registered handlers, in order.
  static std::vector<ExceptionHandler*> Handlers();

  static ExceptionHandler s_defaultHandler;
};

}  // namespace nv_ns

#endif  // NVSHARED_PLATFORM_UTILS_EXCEPTION_HANDLER_H_
