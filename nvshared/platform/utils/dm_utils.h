// nv_ns::DMUtils: the diagnostics channel. Reports of handled and critical
// exceptions go to it when s_bDMEnabled is true; where they end up is the
// host's choice, through SetSink. With no sink set the channel writes
// nothing: the same reports already reach the process log by their own road,
// so the channel stays quiet rather than write them twice.
//
// Ownership: the channel keeps a copy of the host's sink function.
// Threads: SetSink and GenDMExceptionLog may run on any threads at once; the
// sink runs on the reporting thread, with no lock held. s_bDMEnabled is a
// plain flag that the host sets at start-up, before other threads report.
#ifndef NVSHARED_PLATFORM_UTILS_DM_UTILS_H_
#define NVSHARED_PLATFORM_UTILS_DM_UTILS_H_

#include <functional>
#include <string>

#include "nvshared/export.h"

namespace nv_ns {

class NVSHARED_API DMUtils {
 public:
  using Sink = std::function<void(const std::string& text, int code,
                                  const std::string& label)>;

  // Whether callers should send reports to the channel. False at start.
  static bool s_bDMEnabled;

  // Sends one report to the sink, if one is set. It does not look at
  // s_bDMEnabled: that is the caller's test. A sink that throws loses the
  // report; nothing is thrown back.
  static void GenDMExceptionLog(const std::string& text, int code,
                                const std::string& label);

  // Replaces the sink and returns the previous one; an empty function turns
  // the channel off.
  static Sink SetSink(Sink sink);
};

}  // namespace nv_ns

#endif  // NVSHARED_PLATFORM_UTILS_DM_UTILS_H_
