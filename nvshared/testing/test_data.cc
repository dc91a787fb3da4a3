#include "nvshared/testing/test_data.h"

#include <sstream>

#include <gtest/gtest.h>

#include "nvshared/testing/temp_dir.h"

namespace nvshared::testing {

namespace {

std::string_view Trim(std::string_view s) {
  const auto first = s.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  s.remove_prefix(first);
  s.remove_suffix(s.size() - 1 - s.find_last_not_of(" \t"));
  if (s.size() >= 2 && s.front() == '"' && s.back() == '"') {
    s = s.substr(1, s.size() - 2);
  }
  return s;
}

}  // namespace

std::vector<TestRow> ReadTestTable(std::string_view relative,
                                   std::size_t fields) {
  const std::string where = std::string(relative);
  const std::string text = ReadTestData(relative);
  // Joins continuation lines first, keeping the number of each row's first.
  std::vector<std::pair<int, std::string>> lines;
  std::size_t start = 0;
  for (int number = 1; start < text.size(); ++number) {
    std::size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    const std::string_view line(text.data() + start, end - start);
    start = end + 1;
    const std::string_view trimmed = Trim(line);
    if (trimmed.empty() || trimmed.front() == '#') continue;
    if ((line.front() == ' ' || line.front() == '\t') && !lines.empty()) {
      lines.back().second += ' ';
      lines.back().second += trimmed;
    } else {
      lines.emplace_back(number, std::string(line));
    }
  }
  std::vector<TestRow> rows;
  for (const auto& [number, line] : lines) {
    TestRow row{where + ":" + std::to_string(number), {}};
    std::string_view rest = line;
    while (row.fields.size() + 1 < fields) {
      const auto bar = rest.find('|');
      if (bar == std::string_view::npos) break;
      row.fields.emplace_back(Trim(rest.substr(0, bar)));
      rest.remove_prefix(bar + 1);
    }
    row.fields.emplace_back(Trim(rest));
    if (row.fields.size() == fields) {
      rows.push_back(std::move(row));
    } else {
      ADD_FAILURE() << row.where << ": " << row.fields.size() << " of "
                    << fields << " fields";
    }
  }
  if (rows.empty()) ADD_FAILURE() << where << ": no rows (is it there?)";
  return rows;
}

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
