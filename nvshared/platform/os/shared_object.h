// Loading shared objects and listing the files of a directory that match a
// wildcard, for the plug-in layer.
//
// A loaded object is never unloaded: it is opened with RTLD_NODELETE, so
// code and data of a plug-in stay mapped for the life of the process, and an
// object a host still holds after the plug-in's manager is gone never points
// into unmapped code. Threads: safe anywhere (the dynamic loader locks).
#ifndef NVSHARED_PLATFORM_OS_SHARED_OBJECT_H_
#define NVSHARED_PLATFORM_OS_SHARED_OBJECT_H_

#include <string>
#include <vector>

namespace nvshared::os {

// Opens `path` with every symbol resolved now and kept local. Null on
// failure, with the loader's text in `error`.
void* LoadSharedObject(const std::string& path, std::string& error);

// The address of `name` in a loaded object, or null with the loader's text
// in `error`.
void* FindSymbol(void* object, const char* name, std::string& error);

// The names (not paths) of the regular files in `directory` that match
// `pattern` (shell wildcards * ? [...], a leading dot matched only by a
// dot), sorted by name, byte by byte. A directory that cannot be read gives
// none.
std::vector<std::string> ListMatchingFiles(const std::string& directory,
                                           const std::string& pattern);

}  // namespace nvshared::os

#endif  // NVSHARED_PLATFORM_OS_SHARED_OBJECT_H_
