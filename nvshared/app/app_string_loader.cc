#include "nvshared/app/app_string_loader.h"

#include <cctype>
#include <cstring>
#include <string>
#include <string_view>

namespace nv_ns {

AppStringLoader* AppStringLoader::s_instance = nullptr;
bool AppStringLoader::destroyed = false;

namespace {

constexpr const char* kAppNameToken = "<AppName>";
constexpr const char* kCapAppNameToken = "<CapAppName>";

// Replaces every `token` in `text` by `value`; returns how many.
//
// Deliberate: the next search starts one byte after the place just replaced,
// not after the inserted value, so a token inside the value (after its first
// byte) is found and replaced again. Texts filled in so far depend on this
// exact result; names must simply not hold a token.
int ReplaceAll(std::string& text, const char* token, const char* value) {
  if (token == nullptr || value == nullptr || text.empty()) return 0;
  const std::size_t tokenSize = std::strlen(token);
  const std::string_view inserted(value);
  // The next search starts one character after the replaced token, not after
  // the inserted value, so a value holding the token past its first
  // character is replaced again. Such a value would make that loop endless;
  // for it alone the search goes on after the inserted value instead.
  const bool valueRepeatsToken =
      inserted.size() > 1 && inserted.find(std::string_view(token, tokenSize),
                                           1) != std::string_view::npos;
  const std::size_t step = valueRepeatsToken ? inserted.size() : 1;
  int count = 0;
  std::size_t p = text.find(token, 0, tokenSize);
  while (p != std::string::npos) {
    ++count;
    text.replace(p, tokenSize, value);
    p = text.find(token, p + step, tokenSize);
  }
  return count;
}

}  // namespace

AppStringLoader& AppStringLoader::Instance() {
  if (s_instance == nullptr && !destroyed) s_instance = new AppStringLoader();
  if (s_instance != nullptr) return *s_instance;
  // After the final Destroy there is no instance to return; a stand-in that
  // nothing reads keeps the caller's reference valid.
  static AppStringLoader* const standIn = new AppStringLoader();
  standIn->m_appName.clear();
  standIn->m_altAppName.clear();
  return *standIn;
}

const AppStringLoader& AppStringLoader::ConstInstance() { return Instance(); }

bool AppStringLoader::HasInstance() { return s_instance != nullptr; }

void AppStringLoader::Destroy(bool final) {
  if (s_instance == nullptr) return;
  delete s_instance;
  s_instance = nullptr;
  if (final) destroyed = true;
}

void AppStringLoader::Shutdown() { Destroy(true); }

void AppStringLoader::SetAppName(const char* name, const char* altName) {
  m_appName = name != nullptr ? name : "";
  m_altAppName = altName != nullptr ? altName : "";
}

bool AppStringLoader::LoadAppString(std::string& text, bool useAltName) {
  // Without an instance there are no names, which ends as an empty name does.
  if (s_instance == nullptr) return false;
  const std::string& name =
      useAltName ? s_instance->m_altAppName : s_instance->m_appName;
  if (name.empty()) return false;

  int count = ReplaceAll(text, kAppNameToken, name.c_str());
  // The upper-case test and change are those of the C locale on the first
  // byte alone; the rest of the name keeps its case.
  const auto first = static_cast<unsigned char>(name[0]);
  if (std::isupper(first)) {
    count += ReplaceAll(text, kCapAppNameToken, name.c_str());
  } else {
    std::string capName = name;
    capName[0] = static_cast<char>(std::toupper(first));
    count += ReplaceAll(text, kCapAppNameToken, capName.c_str());
  }
  return count > 0;
}

bool AppStringLoader::LoadAppString(const char* source, std::string& text,
                                    bool useAltName) {
  text = source != nullptr ? source : "";
  Instance();
  return LoadAppString(text, useAltName);
}

}  // namespace nv_ns
