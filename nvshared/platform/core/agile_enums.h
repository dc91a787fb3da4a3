// The core's agile enumerations: small classes around an integer with the
// integer conversions and comparisons. AEnum_ExchIds and
// AEnum_ExchNameAliases are run-time tables answered from the reference data
// (reference_data.h); AEnum_ProdIDs is compiled in. Values; thread-safe.
#ifndef NVSHARED_PLATFORM_CORE_AGILE_ENUMS_H_
#define NVSHARED_PLATFORM_CORE_AGILE_ENUMS_H_

#include <string_view>

#include "nvshared/export.h"

namespace dv_core_ns {

// The compile-time members of the exchange-id table; every other id is data.
enum ExchIdsEnum : int {
  INVALID_EXCHANGE_ID = -1,  // "Invalid Exchange ID"
  DV = 0,
  ZENITH = 78,
  DVGLOBAL = 79,
};

class NVSHARED_API AEnum_ExchIds {
 public:
  AEnum_ExchIds() = default;
  AEnum_ExchIds(ExchIdsEnum value) : value_(value) {}  // NOLINT: implicit
  AEnum_ExchIds(int value) : value_(value) {}          // NOLINT: implicit
  AEnum_ExchIds& operator=(int value) {
    value_ = value;
    return *this;
  }
  operator int() const { return value_; }  // NOLINT: implicit by design

  bool operator==(const AEnum_ExchIds& o) const { return value_ == o.value_; }
  bool operator==(ExchIdsEnum e) const { return value_ == e; }
  bool operator!=(const AEnum_ExchIds& o) const { return value_ != o.value_; }
  bool operator!=(ExchIdsEnum e) const { return value_ != e; }

  // The count that bounds all valid ids: valid ids are 0 to EnumMax() - 1.
  // Taken from the loaded reference data.
  static int EnumMax();

 private:
  int value_ = INVALID_EXCHANGE_ID;
};

// Built from an exchange id: the exchange's alias, or -1 (the invalid alias)
// for an exchange without one.
class NVSHARED_API AEnum_ExchNameAliases {
 public:
  explicit AEnum_ExchNameAliases(int exchangeId);

  operator int() const { return value_; }  // NOLINT: implicit by design
  bool operator==(int v) const { return value_ == v; }
  bool operator!=(int v) const { return value_ != v; }

  // True if `exchangeId` is a known exchange that has an alias.
  static bool IsValidValue(int exchangeId);
  // The alias text; "" for the invalid alias. Valid for the process's life.
  const char* Enum2AuxStr() const;

 private:
  int value_;
  const char* text_;
};

enum ProdIDsEnum : int {
  INVALID = 0,
  FUTURE = 1,
  SPREAD = 2,
  OPTION = 3,
  STRATEGY = 4,
  STOCK = 5,
  BOND = 6,
  SWAP = 7,
  WARRANT = 8,
  ENERGY = 30,
  FOREX = 31,
  LEGWISE = 32,
  NDF = 33,
  CFD = 34,
  INDEX = 35,
  ALGO = 36,
  AGGREGATOR = 37,
  PRODID_UNKNOWN = 500,  // "Unknown"
};

class NVSHARED_API AEnum_ProdIDs {
 public:
  AEnum_ProdIDs() = default;
  AEnum_ProdIDs(ProdIDsEnum value) : value_(value) {}  // NOLINT: implicit
  AEnum_ProdIDs(int value) : value_(value) {}          // NOLINT: implicit
  AEnum_ProdIDs& operator=(int value) {
    value_ = value;
    return *this;
  }
  operator int() const { return value_; }  // NOLINT: implicit by design

  bool operator==(const AEnum_ProdIDs& o) const { return value_ == o.value_; }
  bool operator==(ProdIDsEnum e) const { return value_ == e; }
  bool operator!=(const AEnum_ProdIDs& o) const { return value_ != o.value_; }
  bool operator!=(ProdIDsEnum e) const { return value_ != e; }

  // The type's name ("FUTURE"); "" for a value outside the table.
  const char* Enum2Str() const { return Name(value_); }
  static const char* Name(int value);
  // The value of a name, compared with case; -1 if there is none.
  static int FromName(std::string_view name);

 private:
  int value_ = INVALID;
};

}  // namespace dv_core_ns

#endif  // NVSHARED_PLATFORM_CORE_AGILE_ENUMS_H_
