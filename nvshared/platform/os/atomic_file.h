// Whole-file reads and crash-safe whole-file replacement, for stores that
// keep their state in one small file.
//
// Threads: safe anywhere; two writers of the same path race for the last
// rename, and each leaves a complete file.
#ifndef NVSHARED_PLATFORM_OS_ATOMIC_FILE_H_
#define NVSHARED_PLATFORM_OS_ATOMIC_FILE_H_

#include <string>
#include <string_view>

#include "nvshared/export.h"
#include "nvshared/status.h"

namespace nvshared::os {

// True if something exists at `path` (a file, a directory, anything).
bool PathExists(const std::string& path);

// The whole contents of the file at `path`, or an error naming the path.
StatusOr<std::string> ReadWholeFile(const std::string& path);

// Replaces the file at `path` with `contents`: writes a temporary file
// beside it, flushes it to disk, renames it over `path` and flushes the
// directory. A crash leaves either the old file or the new one, never a part.
// The new file keeps the old one's mode (and owner where the process may set
// it); a file that did not exist gets 0666 less the umask. A symbolic link
// is followed: the file it names is replaced and the link stays. A target
// that exists but is not a regular file is refused. On error the old file
// is untouched and the temporary file removed. After a success, temporaries
// of `path` left by processes that were killed while saving (named
// "<path>.tmp.<pid>.<n>", the process gone) are removed.
Status ReplaceFileAtomically(const std::string& path,
                             std::string_view contents);

}  // namespace nvshared::os

#endif  // NVSHARED_PLATFORM_OS_ATOMIC_FILE_H_
