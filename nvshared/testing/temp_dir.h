// TempDir: a fresh directory under the system's temporary directory, removed
// with everything in it when the object goes.
#ifndef NVSHARED_TESTING_TEMP_DIR_H_
#define NVSHARED_TESTING_TEMP_DIR_H_

#include <filesystem>
#include <string>
#include <string_view>

namespace nvshared::testing {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }

  // Writes `contents` to `name` inside the directory; returns the full path.
  std::filesystem::path WriteFile(std::string_view name,
                                  std::string_view contents) const;

 private:
  std::filesystem::path path_;
};

// The whole contents of a file, or "" if it cannot be read.
std::string ReadFile(const std::filesystem::path& path);

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_TEMP_DIR_H_
