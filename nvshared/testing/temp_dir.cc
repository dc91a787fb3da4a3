#include "nvshared/testing/temp_dir.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace nvshared::testing {

TempDir::TempDir() {
  std::string pattern =
      (std::filesystem::temp_directory_path() / "nvshared-test-XXXXXX")
          .string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("cannot create a temporary directory");
  }
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path TempDir::WriteFile(std::string_view name,
                                         std::string_view contents) const {
  std::filesystem::path file = path_ / name;
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  if (!out) throw std::runtime_error("cannot write " + file.string());
  return file;
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace nvshared::testing
