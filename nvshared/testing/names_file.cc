#include "nvshared/testing/names_file.h"

#include <gtest/gtest.h>

#include "nvshared/naming/binary_archiver.h"
#include "nvshared/naming/series_name_formatter.h"

namespace nvshared::testing {

void WriteNamesFile(const std::string& path, int count,
                    const std::vector<NamesFileEntry>& entries) {
  nv_fmt::BinaryArchiver archiver;
  ASSERT_TRUE(archiver.Open(path.c_str(), 1));
  archiver.WriteVersion(nv_fmt::SeriesNameFormatter::CURRENT_VERSION);
  archiver.WriteCount(static_cast<std::size_t>(count));
  for (const NamesFileEntry& e : entries) {
    archiver.WriteSeriesID(e.series);
    archiver.WriteDate(e.expiration);
    archiver.WriteBool(e.hasExpiration);
    archiver.WriteString(e.name);
    if (e.series.IsSpreadOrStrategy()) archiver.WriteLegList(nullptr);
  }
  archiver.Close();
  ASSERT_TRUE(archiver.Saved());
}

std::vector<NamesFileEntry> ReadNamesFile(const std::string& path) {
  nv_fmt::BinaryArchiver archiver;
  std::vector<NamesFileEntry> entries;
  if (!archiver.Open(path.c_str(), 0)) return entries;
  unsigned version = 0;
  int count = 0;
  archiver.ReadVersion(version);
  archiver.ReadCount(count);
  for (; count > 0; --count) {
    NamesFileEntry e;
    archiver.ReadSeriesID(e.series);
    archiver.ReadDate(e.expiration);
    archiver.ReadBool(e.hasExpiration);
    archiver.ReadString(e.name);
    if (e.series.IsSpreadOrStrategy()) {
      dv_core_ns::FullLegList legs;
      archiver.ReadLegList(&legs);
    }
    entries.push_back(e);
  }
  return entries;
}

}  // namespace nvshared::testing
