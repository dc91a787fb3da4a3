#include "nvshared/platform/utils/registry_mgr.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>

#include "nvshared/internal/ascii.h"
#include "nvshared/platform/os/atomic_file.h"

using nvshared::Status;
using nvshared::StatusOr;

namespace {

using nvshared::internal::AsciiLower;

bool NeedsEscape(unsigned char c) {
  return c < 0x20 || c == '=' || c == '[' || c == ']' || c == ';';
}

std::string Escape(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char ch : text) {
    const auto c = static_cast<unsigned char>(ch);
    if (ch == '\\') {
      out += "\\\\";
    } else if (NeedsEscape(c)) {
      char hex[5];
      std::snprintf(hex, sizeof hex, "\\x%02X", c);
      out += hex;
    } else {
      out += ch;
    }
  }
  return out;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// False on a broken escape or a byte that should have been escaped.
bool Unescape(std::string_view text, std::string& out) {
  out.clear();
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c != '\\') {
      if (NeedsEscape(static_cast<unsigned char>(c))) return false;
      out += c;
      continue;
    }
    if (i + 1 < text.size() && text[i + 1] == '\\') {
      out += '\\';
      i += 1;
      continue;
    }
    if (i + 3 >= text.size()) return false;
    if (text[i + 1] != 'x') return false;
    const int hi = HexDigit(text[i + 2]);
    const int lo = HexDigit(text[i + 3]);
    if (hi < 0 || lo < 0) return false;
    out += static_cast<char>(hi * 16 + lo);
    i += 3;
  }
  return true;
}

}  // namespace

CRegistryMgr& CRegistryMgr::Instance(int scope) {
  // Never destroyed: hosts may read settings during static destruction.
  static CRegistryMgr* const user = new CRegistryMgr();
  static CRegistryMgr* const machine = new CRegistryMgr();
  return scope == kMachine ? *machine : *user;
}

bool CRegistryMgr::GetYesNoValue(const char* text) {
  return text == nullptr || text[0] == '\0' || text[0] == 'Y' || text[0] == 'y';
}

bool CRegistryMgr::GetYesNoValue(const std::string& text) {
  return GetYesNoValue(text.c_str());
}

CRegistryMgr& CRegistryMgr::Store(int scope) {
  return scope == 0 ? *this : Instance(scope);
}

std::string CRegistryMgr::FullSection(const std::string& section) const {
  return key_ + section;
}

Status CRegistryMgr::SetFilePath(const std::string& path) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (path.empty()) {
    path_.clear();
    return Status::Ok();
  }
  Sections loaded;
  if (nvshared::os::PathExists(path)) {
    StatusOr<std::string> contents = nvshared::os::ReadWholeFile(path);
    if (!contents.ok()) return contents.status();
    Section* current = nullptr;
    std::size_t lineNo = 0;
    std::size_t pos = 0;
    const std::string& text = *contents;
    while (pos < text.size()) {
      std::size_t end = text.find('\n', pos);
      if (end == std::string::npos) end = text.size();
      const std::string_view line(text.data() + pos, end - pos);
      pos = end + 1;
      ++lineNo;
      auto fault = [&](const char* what) {
        return Status::Error(path + ":" + std::to_string(lineNo) + ": " + what +
                             "; the file is left as it is");
      };
      if (line.empty() || line.front() == ';') continue;
      std::string name;
      if (line.front() == '[') {
        if (line.back() != ']' || line.size() < 2 ||
            !Unescape(line.substr(1, line.size() - 2), name)) {
          return fault("broken section line");
        }
        Section& s = loaded[AsciiLower(name)];
        if (s.name.empty()) s.name = name;
        current = &s;
        continue;
      }
      const std::size_t eq = line.find('=');
      std::string value;
      if (eq == std::string_view::npos || !Unescape(line.substr(0, eq), name) ||
          !Unescape(line.substr(eq + 1), value)) {
        return fault("broken value line");
      }
      if (current == nullptr) return fault("value outside a section");
      Value& v = current->values[AsciiLower(name)];
      if (v.name.empty()) v.name = name;
      v.text = std::move(value);
    }
  }
  // What was set in memory before the file was named wins over the file.
  for (auto& [sectionKey, section] : sections_) {
    Section& target = loaded[sectionKey];
    if (target.name.empty()) target.name = section.name;
    for (auto& [valueKey, value] : section.values) {
      Value& v = target.values[valueKey];
      if (v.name.empty()) v.name = value.name;
      v.text = value.text;
    }
  }
  const bool hadMemory = !sections_.empty();
  sections_ = std::move(loaded);
  path_ = path;
  if (hadMemory) return Flush();
  return Status::Ok();
}

std::string CRegistryMgr::file_path() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return path_;
}

bool CRegistryMgr::SetRegistryKey(const std::string& key) {
  std::lock_guard<std::mutex> lock(mutex_);
  key_ = key;
  return true;
}

const CRegistryMgr::Value* CRegistryMgr::Find(const std::string& section,
                                              const std::string& name) const {
  const auto s = sections_.find(AsciiLower(FullSection(section)));
  if (s == sections_.end()) return nullptr;
  const auto v = s->second.values.find(AsciiLower(name));
  return v == s->second.values.end() ? nullptr : &v->second;
}

Status CRegistryMgr::Flush() const {
  if (path_.empty()) return Status::Ok();
  std::string out;
  for (const auto& [key, section] : sections_) {
    if (section.values.empty()) continue;
    out += "[" + Escape(section.name) + "]\n";
    for (const auto& [valueKey, value] : section.values) {
      out += Escape(value.name) + "=" + Escape(value.text) + "\n";
    }
    out += "\n";
  }
  return nvshared::os::ReplaceFileAtomically(path_, out);
}

bool CRegistryMgr::Write(const std::string& section, const std::string& name,
                         const std::string& text) {
  const std::string full = FullSection(section);
  Section& s = sections_[AsciiLower(full)];
  if (s.name.empty()) s.name = full;
  Value& v = s.values[AsciiLower(name)];
  if (v.name.empty()) v.name = name;
  v.text = text;
  return Flush().ok();
}

std::string CRegistryMgr::ReadRegString(const std::string& section,
                                        const std::string& name,
                                        const std::string& defaultValue,
                                        int scope, bool* found) {
  CRegistryMgr& store = Store(scope);
  std::lock_guard<std::mutex> lock(store.mutex_);
  const Value* v = store.Find(section, name);
  if (found != nullptr) *found = v != nullptr;
  return v == nullptr ? defaultValue : v->text;
}

bool CRegistryMgr::WriteRegString(const std::string& section,
                                  const std::string& name,
                                  const std::string& value, int scope) {
  CRegistryMgr& store = Store(scope);
  std::lock_guard<std::mutex> lock(store.mutex_);
  return store.Write(section, name, value);
}

int CRegistryMgr::ReadRegInt(const std::string& section,
                             const std::string& name, int defaultValue,
                             int scope, bool* found) {
  bool present = false;
  const std::string text = ReadRegString(section, name, "", scope, &present);
  if (found != nullptr) *found = present;
  if (!present || text.empty()) return defaultValue;
  errno = 0;
  char* end = nullptr;
  const long n = std::strtol(text.c_str(), &end, 10);
  if (errno != 0 || *end != '\0' || n < std::numeric_limits<int>::min() ||
      n > std::numeric_limits<int>::max()) {
    return defaultValue;
  }
  return static_cast<int>(n);
}

bool CRegistryMgr::WriteRegInt(const std::string& section,
                               const std::string& name, int value, int scope) {
  return WriteRegString(section, name, std::to_string(value), scope);
}

bool CRegistryMgr::ReadWriteRegDouble(bool load, const std::string& section,
                                      const std::string& name, double& value,
                                      int scope) {
  if (!load) {
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    return WriteRegString(section, name, text, scope);
  }
  bool present = false;
  const std::string text = ReadRegString(section, name, "", scope, &present);
  if (!present || text.empty()) return false;
  errno = 0;
  char* end = nullptr;
  const double d = std::strtod(text.c_str(), &end);
  if (errno != 0 || *end != '\0') return false;
  value = d;
  return true;
}

bool CRegistryMgr::ReadWriteRegString(bool load, const std::string& section,
                                      const std::string& name,
                                      std::string& value, int scope) {
  if (!load) return WriteRegString(section, name, value, scope);
  bool present = false;
  std::string text = ReadRegString(section, name, "", scope, &present);
  if (present) value = std::move(text);
  return present;
}

bool CRegistryMgr::ExistRegValue(const std::string& section,
                                 const std::string& name, int scope) {
  CRegistryMgr& store = Store(scope);
  std::lock_guard<std::mutex> lock(store.mutex_);
  return store.Find(section, name) != nullptr;
}

void CRegistryMgr::Clear() {
  std::lock_guard<std::mutex> lock(mutex_);
  sections_.clear();
  key_.clear();
  path_.clear();
}
