// CRegistryMgr: the settings store of the utility library, standing in for
// the registry. There are two stores, by scope: 1 is the user's, 2 the
// machine's. Each holds sections of named string values; section and value
// names compare without regard to ASCII case, as registry keys do, and keep
// the spelling of their first write.
//
// A store lives in memory until the host gives it a file (SetFilePath).
// From then on every write replaces the file atomically (temporary file,
// flush, rename), so a crash never leaves half a store behind. A file that
// cannot be read or parsed is reported and left alone: the store does not
// bind to it, keeps what it holds in memory, and never overwrites it.
//
// File format (UTF-8 or any bytes, one item per line, LF):
//
//   file    = { line LF }
//   line    = "" | ";" comment | "[" name "]" | name "=" value
//
// where `name` and `value` escape "\" as "\\", and LF, CR, "=", "[", "]",
// ";" and every other byte below 0x20 as "\xHH", so that any text survives a
// round trip. Entries before the first section are an error.
//
// Threads: every operation is safe from any thread; each store has its own
// lock, held for the whole of an operation, file write included.
#ifndef NVSHARED_PLATFORM_UTILS_REGISTRY_MGR_H_
#define NVSHARED_PLATFORM_UTILS_REGISTRY_MGR_H_

#include <map>
#include <mutex>
#include <string>

#include "nvshared/export.h"
#include "nvshared/status.h"

class NVSHARED_API CRegistryMgr {
 public:
  static constexpr int kUser = 1;
  static constexpr int kMachine = 2;

  // The store of `scope`: 2 is the machine's, and 1, as well as any other
  // value, the user's. The stores live for the whole process.
  static CRegistryMgr& Instance(int scope);

  // The first-letter rule of yes/no settings: true for an empty or null text
  // and for one that begins with "Y" or "y", false for anything else.
  static bool GetYesNoValue(const char* text);
  static bool GetYesNoValue(const std::string& text);

  CRegistryMgr(const CRegistryMgr&) = delete;
  CRegistryMgr& operator=(const CRegistryMgr&) = delete;

  // Binds the store to the file at `path`. An existing file is read first,
  // and the values already in memory are written over what it holds; a
  // missing file is created on the next write. When the file exists but
  // cannot be read or parsed, the result is an error naming the file, the
  // line and the fault, the store stays in memory, and the file is not
  // touched. An empty path unbinds the store.
  nvshared::Status SetFilePath(const std::string& path);
  std::string file_path() const;

  // A key prepended to every section name of the calls that follow, as a
  // registry path is ("Software\Dravane\" then "NVConfigDir"). Empty by
  // default. Always true.
  bool SetRegistryKey(const std::string& key);

  // Each of the operations below works on the store of `scope`; 0 (the
  // default) means this store. A failed file write leaves the value in
  // memory and makes the write answer false.

  // The stored text, or `defaultValue` when there is none. `found`, if
  // given, tells which.
  std::string ReadRegString(const std::string& section, const std::string& name,
                            const std::string& defaultValue, int scope = 0,
                            bool* found = nullptr);
  bool WriteRegString(const std::string& section, const std::string& name,
                      const std::string& value, int scope = 0);

  // The stored value as a decimal integer, or `defaultValue` when there is
  // none or it is no whole number in the range of int.
  int ReadRegInt(const std::string& section, const std::string& name,
                 int defaultValue, int scope = 0, bool* found = nullptr);
  bool WriteRegInt(const std::string& section, const std::string& name,
                   int value, int scope = 0);

  // With `load`, reads into `value` and answers whether a value was found
  // (for the double, also whether it parsed; `value` is left as it was
  // otherwise). Without, writes `value` and answers whether the write held.
  bool ReadWriteRegDouble(bool load, const std::string& section,
                          const std::string& name, double& value,
                          int scope = 0);
  bool ReadWriteRegString(bool load, const std::string& section,
                          const std::string& name, std::string& value,
                          int scope = 0);

  // True if the section holds a value of that name.
  bool ExistRegValue(const std::string& section, const std::string& name,
                     int scope = 0);

  // Removes every value and the registry key, and unbinds the file (which
  // stays as it is). For tests and for hosts that start over.
  void Clear();

 private:
  struct Value {
    std::string name;  // spelling of the first write
    std::string text;
  };
  struct Section {
    std::string name;
    std::map<std::string, Value> values;  // by lower-cased name
  };
  using Sections = std::map<std::string, Section>;  // by lower-cased name

  CRegistryMgr() = default;
  ~CRegistryMgr() = default;

  CRegistryMgr& Store(int scope);
  std::string FullSection(const std::string& section) const;
  const Value* Find(const std::string& section, const std::string& name) const;
  bool Write(const std::string& section, const std::string& name,
             const std::string& text);
  nvshared::Status Flush() const;

  mutable std::mutex mutex_;
  Sections sections_;
  std::string key_;
  std::string path_;
};

#endif  // NVSHARED_PLATFORM_UTILS_REGISTRY_MGR_H_
