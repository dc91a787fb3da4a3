// ZoneScope: sets the TZ variable for the life of one test and puts the old
// value (or its absence) back. The variable is process-wide, so tests that
// use it must not run alongside threads that read the local time.
#ifndef NVSHARED_TESTING_ZONE_SCOPE_H_
#define NVSHARED_TESTING_ZONE_SCOPE_H_

#include <cstdlib>
#include <ctime>
#include <string>

namespace nvshared::testing {

class ZoneScope {
 public:
  explicit ZoneScope(const char* zone) {
    if (const char* old = std::getenv("TZ")) m_old = old, m_hadOld = true;
    setenv("TZ", zone, 1);
    tzset();
  }
  ~ZoneScope() {
    if (m_hadOld) {
      setenv("TZ", m_old.c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  ZoneScope(const ZoneScope&) = delete;
  ZoneScope& operator=(const ZoneScope&) = delete;

 private:
  std::string m_old;
  bool m_hadOld = false;
};

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_ZONE_SCOPE_H_
