#include "nvshared/platform/os/profile_file.h"

#include <algorithm>
#include <cstring>

#include "nvshared/internal/ascii.h"
#include "nvshared/platform/os/atomic_file.h"

namespace nvshared::os {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

using nvshared::internal::AsciiLower;

// Copies `text` into `buffer`, cut to `size` - 1 characters, with a NUL.
std::size_t CopyCut(std::string_view text, char* buffer, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t n = std::min(text.size(), size - 1);
  std::memcpy(buffer, text.data(), n);
  buffer[n] = '\0';
  return n;
}

}  // namespace

ProfileFile ProfileFile::Parse(std::string_view text) {
  ProfileFile profile;
  Section* current = nullptr;  // null: outside a section, or a repeat
  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t end = pos;
    while (end < text.size() && text[end] != '\n' && text[end] != '\r' &&
           text[end] != '\0') {
      ++end;
    }
    const std::string_view line = Trim(text.substr(pos, end - pos));
    // CR LF counts as one line end.
    pos = end + 1;
    if (end < text.size() && text[end] == '\r' && pos < text.size() &&
        text[pos] == '\n') {
      ++pos;
    }
    if (line.empty() || line.front() == ';') continue;
    if (line.front() == '[') {
      const std::size_t close = line.rfind(']');
      if (close == std::string_view::npos) continue;
      const std::string_view name = Trim(line.substr(1, close - 1));
      // An empty name would end the NUL-separated list early, so the list
      // leaves it out, as the Windows function does.
      if (!name.empty()) profile.names_.emplace_back(name);
      auto [it, inserted] = profile.sections_.try_emplace(AsciiLower(name));
      current = inserted ? &it->second : nullptr;
      continue;
    }
    if (current == nullptr) continue;
    const std::size_t eq = line.find('=');
    const std::string key = AsciiLower(Trim(line.substr(0, eq)));
    std::optional<std::string> value;
    if (eq != std::string_view::npos) {
      std::string_view v = Trim(line.substr(eq + 1));
      if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') &&
          v.back() == v.front()) {
        v = v.substr(1, v.size() - 2);
      }
      value.emplace(v);
    }
    current->values.try_emplace(key, std::move(value));
  }
  return profile;
}

StatusOr<ProfileFile> ProfileFile::Read(const std::string& path) {
  StatusOr<std::string> contents = ReadWholeFile(path);
  if (!contents.ok()) return contents.status();
  return Parse(*contents);
}

std::size_t ProfileFile::GetSectionNames(char* buffer, std::size_t size) const {
  if (size == 0) return 0;
  if (size == 1) {
    buffer[0] = '\0';
    return 0;
  }
  // `room` keeps one place for the final NUL.
  std::size_t used = 0;
  std::size_t room = size - 1;
  for (const std::string& name : names_) {
    const std::size_t need = name.size() + 1;
    if (need > room) {
      // The name that does not fit is cut to what does, and the list ends.
      if (room > 0) {
        std::memcpy(buffer + used, name.data(), room - 1);
        used += room - 1;
        buffer[used++] = '\0';
      }
      buffer[used] = '\0';
      return size - 2;
    }
    std::memcpy(buffer + used, name.data(), name.size());
    used += name.size();
    buffer[used++] = '\0';
    room -= need;
  }
  buffer[used] = '\0';
  return used;
}

std::size_t ProfileFile::GetString(std::string_view section,
                                   std::string_view key,
                                   const char* defaultValue, char* buffer,
                                   std::size_t size) const {
  const std::string_view fallback =
      defaultValue == nullptr ? std::string_view() : defaultValue;
  const auto s = sections_.find(AsciiLower(section));
  if (s == sections_.end()) return CopyCut(fallback, buffer, size);
  const auto k = s->second.values.find(AsciiLower(key));
  if (k == s->second.values.end() || !k->second.has_value()) {
    return CopyCut(fallback, buffer, size);
  }
  return CopyCut(*k->second, buffer, size);
}

}  // namespace nvshared::os
