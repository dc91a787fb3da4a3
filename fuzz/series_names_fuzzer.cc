// Reads arbitrary bytes as a custom-names file with the library's archiver,
// in the order the formatter reads it. A damaged file must throw
// BinaryArchiveError and nothing else; what reads whole must write back to
// the same bytes and read again alike.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "nvshared/naming/binary_archiver.h"

namespace {

struct Entry {
  dv_core_ns::SeriesID series;
  dv_core_ns::Date expiration;
  bool hasExpiration = false;
  std::string name;
  dv_core_ns::FullLegList legs;
};

// Reads as the formatter does; false where the bytes are damaged.
bool ReadAll(std::string_view bytes, unsigned& version,
             std::vector<Entry>& entries) {
  nv_fmt::BinaryArchiver reader;
  reader.OpenBytes(bytes);
  try {
    int count = 0;
    reader.ReadVersion(version);
    reader.ReadCount(count);
    for (; count > 0; --count) {
      Entry e;
      reader.ReadSeriesID(e.series);
      reader.ReadDate(e.expiration);
      reader.ReadBool(e.hasExpiration);
      reader.ReadString(e.name);
      if (e.series.IsSpreadOrStrategy()) reader.ReadLegList(&e.legs);
      entries.push_back(std::move(e));
    }
  } catch (const nv_fmt::BinaryArchiveError&) {
    return false;
  }
  return true;
}

std::string WriteAll(unsigned version, const std::vector<Entry>& entries) {
  nv_fmt::BinaryArchiver writer;
  writer.Open("/nonexistent/never-written", 1);
  writer.WriteVersion(version);
  writer.WriteCount(entries.size());
  for (const Entry& e : entries) {
    writer.WriteSeriesID(e.series);
    writer.WriteDate(e.expiration);
    writer.WriteBool(e.hasExpiration);
    writer.WriteString(e.name);
    if (e.series.IsSpreadOrStrategy()) writer.WriteLegList(&e.legs);
  }
  return writer.Bytes();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  unsigned version = 0;
  std::vector<Entry> entries;
  if (!ReadAll(bytes, version, entries)) return 0;

  // A file that read whole round-trips: written again it reads the same, and
  // a second writing gives the same bytes.
  const std::string once = WriteAll(version, entries);
  unsigned again = 0;
  std::vector<Entry> reread;
  if (!ReadAll(once, again, reread) || again != version ||
      reread.size() != entries.size() || WriteAll(again, reread) != once) {
    std::abort();
  }
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (reread[i].name != entries[i].name ||
        !(reread[i].series == entries[i].series)) {
      std::abort();
    }
  }
  return 0;
}
