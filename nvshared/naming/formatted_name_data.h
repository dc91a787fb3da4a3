// One entry of the custom-name registry, and the hashing and key equality of
// the registry's two tables.
#ifndef NVSHARED_NAMING_FORMATTED_NAME_DATA_H_
#define NVSHARED_NAMING_FORMATTED_NAME_DATA_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "nvshared/export.h"
#include "nvshared/platform/core/date_time.h"
#include "nvshared/platform/core/ids.h"
#include "nvshared/platform/core/legs.h"

namespace nv_fmt {

// The series (its exchange unflavoured) with the user's name for it.
class NVSHARED_API FormattedNameData : public dv_core_ns::SeriesID {
 public:
  // When the contract expires: its own expiry, or for a spread or strategy
  // that of the leg that expires first.
  dv_core_ns::Date expiration;
  bool hasExpiration = false;
  // The custom name, trimmed.
  std::string name;
  // The legs of a spread or strategy (exchanges unflavoured); null for an
  // outright.
  std::unique_ptr<dv_core_ns::FullLegList> legs;

  FormattedNameData() = default;
  explicit FormattedNameData(const dv_core_ns::SeriesID& series)
      : SeriesID(series) {}
  // Copies deep-copy the leg list.
  FormattedNameData(const FormattedNameData& other);
  FormattedNameData& operator=(const FormattedNameData& other);
  FormattedNameData(FormattedNameData&&) noexcept = default;
  FormattedNameData& operator=(FormattedNameData&&) noexcept = default;
  ~FormattedNameData() override;
};

// The registry's hash: from 2166136261, over every (length / 10 + 1)-th
// character, hash = hash * 16777619 ^ character (as a signed value).
NVSHARED_API std::size_t RegistryHash(std::string_view text);

// Names hash by their text and compare exactly, with case.
struct NameHash {
  std::size_t operator()(const std::string& name) const {
    return RegistryHash(name);
  }
};

// Series hash by their key.
struct SeriesKeyHash {
  std::size_t operator()(const dv_core_ns::SeriesID& series) const {
    return RegistryHash(series.seriesKey);
  }
};

// Two series of exchanges whose names contain "LIFFE" (any case) are the same
// entry when their keys are equal; all others compare with operator==.
struct NVSHARED_API SeriesKeyEqual {
  bool operator()(const dv_core_ns::SeriesID& a,
                  const dv_core_ns::SeriesID& b) const;
};

}  // namespace nv_fmt

#endif  // NVSHARED_NAMING_FORMATTED_NAME_DATA_H_
