#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "nvshared/platform/os/atomic_file.h"

namespace nvshared::os {
namespace {

Status Errno(const std::string& path, const char* what) {
  return Status::Error(path + ": " + what + ": " + std::strerror(errno));
}

std::string DirectoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  if (slash == 0) return "/";
  return path.substr(0, slash);
}

}  // namespace

bool PathExists(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0;
}

StatusOr<std::string> ReadWholeFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return Errno(path, "cannot open the file");
  std::string contents;
  char chunk[8192];
  for (;;) {
    const ssize_t n = ::read(fd, chunk, sizeof chunk);
    if (n < 0) {
      if (errno == EINTR) continue;
      Status error = Errno(path, "cannot read the file");
      ::close(fd);
      return error;
    }
    if (n == 0) break;
    contents.append(chunk, static_cast<std::size_t>(n));
  }
  ::close(fd);
  return contents;
}

namespace {

// The file that writing to `path` reaches: `path` itself, or the end of the
// chain of symbolic links that starts there (which may not exist yet).
StatusOr<std::string> FollowLinks(const std::string& path) {
  std::string target = path;
  for (int hops = 0; hops < 40; ++hops) {
    struct stat st;
    if (::lstat(target.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) {
      return target;
    }
    std::string link(PATH_MAX, '\0');
    const ssize_t n = ::readlink(target.c_str(), link.data(), link.size());
    if (n < 0) return Errno(target, "cannot read the link");
    link.resize(static_cast<std::size_t>(n));
    target = link.front() == '/' ? link : DirectoryOf(target) + "/" + link;
  }
  errno = ELOOP;
  return Errno(path, "cannot follow the link");
}

// Creates a new file beside `path` for writing, close-on-exec. Created with
// mode 0666 so that the process's umask applies as it does to any new file.
int CreateTemporary(const std::string& path, std::string& temp) {
  static std::atomic<unsigned> counter{0};
  for (int attempt = 0; attempt < 100; ++attempt) {
    temp = path + ".tmp." + std::to_string(::getpid()) + "." +
           std::to_string(counter.fetch_add(1));
    const int fd =
        ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  return -1;
}

// A process killed between creating its temporary and the rename leaves the
// temporary behind. Once a save has succeeded, the temporaries of `target`
// whose process no longer exists are removed; those of live processes (a
// save under way elsewhere) are left alone.
void RemoveStrayTemporaries(const std::string& target) {
  const std::string dir = DirectoryOf(target);
  const std::string prefix =
      target.substr(
          target.rfind('/') == std::string::npos ? 0 : target.rfind('/') + 1) +
      ".tmp.";
  DIR* listing = ::opendir(dir.c_str());
  if (listing == nullptr) return;
  while (const dirent* entry = ::readdir(listing)) {
    const std::string_view name = entry->d_name;
    if (name.substr(0, prefix.size()) != prefix) continue;
    // <prefix><pid>.<counter>, both decimal.
    const std::string_view rest = name.substr(prefix.size());
    const std::size_t dot = rest.find('.');
    if (dot == 0 || dot == std::string_view::npos || dot > 9 ||
        dot + 1 == rest.size() ||
        rest.find_first_not_of("0123456789.") != std::string_view::npos ||
        rest.find('.', dot + 1) != std::string_view::npos) {
      continue;
    }
    const pid_t pid = static_cast<pid_t>(std::stol(std::string(rest, 0, dot)));
    if (pid <= 0 || ::kill(pid, 0) == 0 || errno != ESRCH) continue;
    ::unlink((dir + "/" + std::string(name)).c_str());
  }
  ::closedir(listing);
}

}  // namespace

Status ReplaceFileAtomically(const std::string& path,
                             std::string_view contents) {
  // Writing through a symbolic link replaces the file it names and keeps
  // the link.
  StatusOr<std::string> resolved = FollowLinks(path);
  if (!resolved.ok()) return resolved.status();
  const std::string& target = resolved.value();
  struct stat old;
  const bool existed = ::stat(target.c_str(), &old) == 0;
  if (existed && !S_ISREG(old.st_mode)) {
    return Status::Error(target + ": not a regular file; left as it is");
  }

  std::string temp;
  const int fd = CreateTemporary(target, temp);
  if (fd < 0) return Errno(target, "cannot create a temporary file");
  auto fail = [&](const std::string& where, const char* what) {
    Status error = Errno(where, what);
    ::close(fd);
    ::unlink(temp.c_str());
    return error;
  };
  // The replacement keeps the old file's permissions (and owner, where the
  // process may set it).
  if (existed) {
    if (::fchmod(fd, old.st_mode & 07777) != 0) {
      return fail(temp, "cannot set the mode");
    }
    if (::fchown(fd, old.st_uid, old.st_gid) != 0) {
      // Only a privileged process may give a file away: keep ours.
    }
  }
  std::size_t done = 0;
  while (done < contents.size()) {
    const ssize_t n =
        ::write(fd, contents.data() + done, contents.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return fail(temp, "cannot write");
    }
    done += static_cast<std::size_t>(n);
  }
  if (::fsync(fd) != 0) return fail(temp, "cannot flush");
  ::close(fd);
  if (::rename(temp.c_str(), target.c_str()) != 0) {
    Status error = Errno(target, "cannot replace the file");
    ::unlink(temp.c_str());
    return error;
  }
  // The rename itself reaches the disk with the directory.
  const int dir = ::open(DirectoryOf(target).c_str(), O_RDONLY | O_CLOEXEC);
  if (dir >= 0) {
    ::fsync(dir);
    ::close(dir);
  }
  RemoveStrayTemporaries(target);
  return Status::Ok();
}

}  // namespace nvshared::os
