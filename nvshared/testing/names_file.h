// Names files read and written entry by entry with the library's binary
// archiver, for tests that build a file by hand or check what was saved.
// Plain functions over files the caller owns; no shared state.
#ifndef NVSHARED_TESTING_NAMES_FILE_H_
#define NVSHARED_TESTING_NAMES_FILE_H_

#include <string>
#include <vector>

#include "nvshared/platform/core/ids.h"

namespace nvshared::testing {

struct NamesFileEntry {
  dv_core_ns::SeriesID series;
  dv_core_ns::Date expiration;
  bool hasExpiration = false;
  std::string name;
};

// Writes a names file of the current version whose count is `count`, which
// may differ from the number of entries; spreads get no leg list. Fails the
// test if the file is not saved.
void WriteNamesFile(const std::string& path, int count,
                    const std::vector<NamesFileEntry>& entries);

// The entries of a names file, or none if it cannot be opened; throws
// BinaryArchiveError where the file is damaged.
std::vector<NamesFileEntry> ReadNamesFile(const std::string& path);

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_NAMES_FILE_H_
