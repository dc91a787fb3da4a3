// Test-only access to the formatter's private state: the tables, the names
// file and the clock of expiry. Included by the naming tests alone.
#ifndef NVSHARED_NAMING_INTERNAL_FORMATTER_PEER_H_
#define NVSHARED_NAMING_INTERNAL_FORMATTER_PEER_H_

#include <ctime>
#include <string>

#include "nvshared/naming/series_name_formatter.h"

namespace nv_fmt {

class SeriesNameFormatterPeer {
 public:
  static SeriesNameFormatter& F() { return SeriesNameFormatter::Instance(); }
  // Puts an entry straight into the tables, without log, save or notice.
  static void AddName(const dv_core_ns::SeriesID& series,
                      const std::string& name) {
    dv_core_ns::SeriesID key(series);
    SeriesNameFormatter::MakeUnflavoredSeriesID(key);
    FormattedNameData entry(key);
    entry.name = name;
    F().entries_.insert_or_assign(key, entry);
    F().names_.insert_or_assign(name, key);
  }
  static std::string DefaultName(const dv_core_ns::SeriesID& series,
                                 const dv_core_ns::FullLegList* legs) {
    std::string out;
    F().GetDefaultName(series, legs, out, true);
    return out;
  }
  // Empties the tables and forgets the file, the prompt and the clock.
  static void Clear() {
    F().entries_.clear();
    F().names_.clear();
    F().archivePath_.clear();
    F().archiverFactory_ = nullptr;
    F().prompt_ = nullptr;
    F().clock_ = nullptr;
  }
  static void SetClock(std::time_t (*clock)()) { F().clock_ = clock; }
  static void Serialize(IArchiver& archiver) { F().Serialize(archiver); }
  static bool Load() { return F().Load(); }
  static const FormattedNameData* Entry(const dv_core_ns::SeriesID& series) {
    dv_core_ns::SeriesID key(series);
    SeriesNameFormatter::MakeUnflavoredSeriesID(key);
    const auto it = F().entries_.find(key);
    return it == F().entries_.end() ? nullptr : &it->second;
  }
  static std::size_t Size() { return F().entries_.size(); }
};

}  // namespace nv_fmt

#endif  // NVSHARED_NAMING_INTERNAL_FORMATTER_PEER_H_
