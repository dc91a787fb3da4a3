// nv_ns::DMUtils: the diagnostics channel. Reports of handled and critical
// exceptions go to it when s_bDMEnabled is true; where they end up is the
// host's choice, through SetSink. With no sink set the channel writes
// nothing: the same reports already reach the process log by their own road,
// so the channel stays quiet rather than write them twice.
//
// The channel also carries property reports: records such as a price
// column's settings describe themselves as (group, key, value) triples in
// one of three scopes (the application's defaults, its global settings, or
// one window's settings). The GenDM*Props* emitters hand each property to
// the property sink that the host sets with SetPropertySink; with none set
// they do nothing.
//
// Ownership: the channel keeps copies of the host's sink functions.
// Threads: the setters and emitters may run on any threads at once; a sink
// runs on the reporting thread, with no lock held. s_bDMEnabled is a plain
// flag that the host sets at start-up, before other threads report.
#ifndef NVSHARED_PLATFORM_UTILS_DM_UTILS_H_
#define NVSHARED_PLATFORM_UTILS_DM_UTILS_H_

#include <cstdint>
#include <functional>
#include <string>

#include "nvshared/export.h"

namespace nv_ns {

// The window a local property belongs to, as the host identifies it. The
// emitters pass it on untouched.
struct DMWindowInfo {
  std::int32_t m_iWindowId = 0;
  std::string m_sWindowName;
};

// The group under which a price column's advanced settings are reported.
inline constexpr const char* VAL_PROPERTY_GROUP_ZDT_ADVANCED = "ZDT Advanced";

// One property as the emitters deliver it to the host's sink.
struct DMProperty {
  enum class Scope : std::int32_t { kDefault = 0, kGlobal = 1, kLocal = 2 };
  enum class Kind : std::int32_t {
    kString = 0,
    kBool = 1,
    kInt = 2,
    kDouble = 3
  };
  Scope scope = Scope::kDefault;
  // The flag of the global and local emitters, false for the defaults.
  bool flag = false;
  // Meaningful for the local scope only.
  DMWindowInfo window;
  std::string group;
  std::string key;
  Kind kind = Kind::kString;
  // The value as text: strings as given, bools "1" or "0", ints in decimal,
  // doubles in the shortest form that reads back as the same double.
  std::string value;
  // The value as a number, for bools, ints and doubles; 0 for strings.
  double number = 0.0;
};

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

  using PropertySink = std::function<void(const DMProperty& property)>;
  // Replaces the property sink and returns the previous one; an empty
  // function drops property reports. A sink that throws loses that one
  // property; nothing is thrown back.
  static PropertySink SetPropertySink(PropertySink sink);

  // Application defaults. Like GenDMExceptionLog, these do not look at
  // s_bDMEnabled.
  static void GenDMDefaultProps(const std::string& group,
                                const std::string& key,
                                const std::string& value);
  static void GenDMDefaultPropsBool(const std::string& group,
                                    const std::string& key, bool value);
  static void GenDMDefaultPropsInt(const std::string& group,
                                   const std::string& key, int value);
  static void GenDMDefaultPropsDouble(const std::string& group,
                                      const std::string& key, double value);
  // Global settings; `flag` is handed on as it came.
  static void GenDMGlobalProps(bool flag, const std::string& group,
                               const std::string& key,
                               const std::string& value);
  static void GenDMGlobalPropsBool(bool flag, const std::string& group,
                                   const std::string& key, bool value);
  static void GenDMGlobalPropsInt(bool flag, const std::string& group,
                                  const std::string& key, int value);
  static void GenDMGlobalPropsDouble(bool flag, const std::string& group,
                                     const std::string& key, double value);
  // One window's settings; `flag` and `window` are handed on as they came.
  static void GenDMLocalProps(bool flag, const DMWindowInfo& window,
                              const std::string& group, const std::string& key,
                              const std::string& value);
  static void GenDMLocalPropsBool(bool flag, const DMWindowInfo& window,
                                  const std::string& group,
                                  const std::string& key, bool value);
  static void GenDMLocalPropsInt(bool flag, const DMWindowInfo& window,
                                 const std::string& group,
                                 const std::string& key, int value);
  static void GenDMLocalPropsDouble(bool flag, const DMWindowInfo& window,
                                    const std::string& group,
                                    const std::string& key, double value);
};

}  // namespace nv_ns

#endif  // NVSHARED_PLATFORM_UTILS_DM_UTILS_H_
