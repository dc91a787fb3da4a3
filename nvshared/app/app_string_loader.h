// nv_ns::AppStringLoader: fills the tokens "<AppName>" and "<CapAppName>" of
// user-visible texts with the application names that the host sets at
// start-up. The library has no string table; texts come from the caller.
//
// Ownership: one instance per process, owned by the class and created on
// first use. Destroy(false) drops it (a later use makes a fresh, nameless
// one); Destroy(true) and Shutdown() drop it for good.
// Threads: no lock. The first Instance() must happen before a second thread
// comes here, and the host sets the names once at start-up; afterwards
// LoadAppString only reads them.
#ifndef NVSHARED_APP_APP_STRING_LOADER_H_
#define NVSHARED_APP_APP_STRING_LOADER_H_

#include <string>

#include "nvshared/export.h"

namespace nv_ns {

class NVSHARED_API AppStringLoader {
 public:
  // The instance, created if there is none yet. After Destroy(true) or
  // Shutdown() no instance is made any more; these then return a nameless
  // stand-in that is not the instance: names set on it are never used, and
  // HasInstance() stays false.
  static AppStringLoader& Instance();
  static const AppStringLoader& ConstInstance();
  // Whether the instance exists. Creates none.
  static bool HasInstance();
  // Deletes the instance if there is one; with `final` no new one is made
  // afterwards. Without an instance nothing happens, `final` included.
  static void Destroy(bool final);
  // Deletes the instance, if there is one, for good. Call it last.
  static void Shutdown();

  // Sets the primary and the alternative name. Neither may be null; a null
  // one is taken as empty. A name should not hold a token: substitution
  // looks for the token again one character after each place it replaced,
  // so a name holding it at its start is replaced inside again. A name
  // holding it further on would make that endless; there the search resumes
  // after the inserted name instead.
  void SetAppName(const char* name, const char* altName);
  const std::string& AppName() const { return m_appName; }
  const std::string& AltAppName() const { return m_altAppName; }

  // Replaces every "<AppName>" in `text` by the name (the alternative one if
  // `useAltName`), and every "<CapAppName>" by the name with its first byte
  // upper-cased as the current C locale does it. True if anything was
  // replaced. With an empty name, `text` is left as it is and the result is
  // false. Without an instance (none made yet, or after Shutdown) the result
  // is false too and `text` is left as it is; none is created.
  static bool LoadAppString(std::string& text, bool useAltName = false);
  // Assigns `source` (null: empty) to `text`, makes sure the instance exists,
  // then does as the form above. After Shutdown `text` holds `source` as it
  // is and the result is false.
  static bool LoadAppString(const char* source, std::string& text,
                            bool useAltName = false);

  AppStringLoader(const AppStringLoader&) = default;
  AppStringLoader& operator=(const AppStringLoader&) = default;
  ~AppStringLoader() = default;

 protected:
  AppStringLoader() = default;

 private:
  std::string m_appName;
  std::string m_altAppName;

  static AppStringLoader* s_instance;
  static bool destroyed;
};

}  // namespace nv_ns

#endif  // NVSHARED_APP_APP_STRING_LOADER_H_
