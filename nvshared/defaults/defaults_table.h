// nv_ns::DefaultsTable: a defaults table held in a vector, seen through the
// DefaultsEntryIterator that the selection walks; and ParseDefaultsTable,
// which reads such a table from JSON (format: docs/formats/defaults-table.md).
//
// Tools and tests use it to play a host's table; hosts keep their own.
// A table is used by one thread at a time.
#ifndef NVSHARED_DEFAULTS_DEFAULTS_TABLE_H_
#define NVSHARED_DEFAULTS_DEFAULTS_TABLE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "nvshared/defaults/defaults_entry_iterator.h"
#include "nvshared/export.h"
#include "nvshared/status.h"

namespace nv_ns {

// One entry. A field whose wild flag is true is open: the entry names no
// such thing.
struct DefaultsTableEntry {
  // A label for people; takes no part in matching.
  std::string name;
  std::string templateName;
  unsigned short brokerId = 0;
  int hostValue = 0;
  std::string gatewayName;
  bool wildGateway = true;
  int gmId = -1;
  std::string productNames;
  bool wildProductName = true;
  int productType = 0;
  bool wildProductType = true;
  int marketId = -1;
  bool wildMarketId = true;
  bool excluded = false;
  bool fallback = false;
};

class NVSHARED_API DefaultsTable : public DefaultsEntryIterator {
 public:
  explicit DefaultsTable(std::vector<DefaultsTableEntry> entries);
  ~DefaultsTable() override;

  const std::vector<DefaultsTableEntry>& entries() const { return entries_; }
  // Index of the entry the iterator stands on; entries().size() past the
  // end.
  std::size_t position() const { return position_; }

  bool HasEntry() const override;
  void Next() override;
  void Reset() override;
  void SaveBest() override;
  void RestoreBest() override;
  const char* GetTemplateName() const override;
  unsigned short GetBrokerId() const override;
  int GetHostValue() const override;
  std::string GetGatewayName() const override;
  int GetGMId() const override;
  bool IsWildGateway() const override;
  const char* GetProductNames() const override;
  bool IsWildProductName() const override;
  ProductType::Value GetProductType() const override;
  bool IsWildProductType() const override;
  MarketType::Value GetMarketId() const override;
  bool IsWildMarketId() const override;
  bool IsExcluded() const override;
  bool IsFallback() const override;

 private:
  const DefaultsTableEntry& current() const { return entries_[position_]; }

  std::vector<DefaultsTableEntry> entries_;
  std::size_t position_ = 0;
  std::size_t best_ = 0;
};

// Reads a defaults table from JSON text. An error names the entry (counted
// from 0) and the field at fault.
NVSHARED_API nvshared::StatusOr<std::vector<DefaultsTableEntry>>
ParseDefaultsTable(std::string_view json);

}  // namespace nv_ns

#endif  // NVSHARED_DEFAULTS_DEFAULTS_TABLE_H_
