#include "nvshared/testing/test_data.h"

#include <sstream>

#include <gtest/gtest.h>

#include "nvshared/testing/temp_dir.h"

namespace nvshared::testing {

std::string ReadTestData(std::string_view relative) {
  const std::string path =
      std::string(NVSHARED_SOURCE_DIR) + "/" + std::string(relative);
  const std::string text = ReadFile(path);
  if (text.empty()) ADD_FAILURE() << "cannot read " << path;
  return text;
}

std::vector<std::string> ReadTestDataLines(std::string_view relative) {
  std::vector<std::string> lines;
  std::istringstream in(ReadTestData(relative));
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with('#')) continue;
    for (auto at = line.find("\\t"); at != std::string::npos;
         at = line.find("\\t", at + 1)) {
      line.replace(at, 2, "\t");
    }
    lines.push_back(line);
  }
  return lines;
}

}  // namespace nvshared::testing
