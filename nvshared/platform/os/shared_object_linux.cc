#include <algorithm>

#include <dirent.h>
#include <dlfcn.h>
#include <fnmatch.h>
#include <sys/stat.h>

#include "nvshared/platform/os/shared_object.h"

namespace nvshared::os {

namespace {

std::string LastLoaderError() {
  const char* text = ::dlerror();
  return text != nullptr ? text : "unknown loader error";
}

}  // namespace

void* LoadSharedObject(const std::string& path, std::string& error) {
  ::dlerror();
  void* object = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (object == nullptr) error = LastLoaderError();
  return object;
}

void* FindSymbol(void* object, const char* name, std::string& error) {
  ::dlerror();
  void* symbol = ::dlsym(object, name);
  if (symbol == nullptr) error = LastLoaderError();
  return symbol;
}

std::vector<std::string> ListMatchingFiles(const std::string& directory,
                                           const std::string& pattern) {
  std::vector<std::string> names;
  DIR* dir = ::opendir(directory.c_str());
  if (dir == nullptr) return names;
  while (const dirent* entry = ::readdir(dir)) {
    const std::string name = entry->d_name;
    if (::fnmatch(pattern.c_str(), name.c_str(), FNM_PERIOD) != 0) continue;
    struct stat info {};
    const std::string path = directory + "/" + name;
    if (::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) continue;
    names.push_back(name);
  }
  ::closedir(dir);
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace nvshared::os
