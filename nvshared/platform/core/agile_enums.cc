#include "nvshared/platform/core/agile_enums.h"

#include <array>

#include "nvshared/platform/core/reference_data.h"

namespace dv_core_ns {
namespace {

struct TypeName {
  int value;
  const char* name;
};

constexpr std::array<TypeName, 18> kProductTypes = {{
    {INVALID, "INVALID"},
    {FUTURE, "FUTURE"},
    {SPREAD, "SPREAD"},
    {OPTION, "OPTION"},
    {STRATEGY, "STRATEGY"},
    {STOCK, "STOCK"},
    {BOND, "BOND"},
    {SWAP, "SWAP"},
    {WARRANT, "WARRANT"},
    {ENERGY, "ENERGY"},
    {FOREX, "FOREX"},
    {LEGWISE, "LEGWISE"},
    {NDF, "NDF"},
    {CFD, "CFD"},
    {INDEX, "INDEX"},
    {ALGO, "ALGO"},
    {AGGREGATOR, "AGGREGATOR"},
    {PRODID_UNKNOWN, "Unknown"},
}};

}  // namespace

int AEnum_ExchIds::EnumMax() {
  return ReferenceData::Current().ExchangeIdCount();
}

AEnum_ExchNameAliases::AEnum_ExchNameAliases(int exchangeId)
    : value_(-1), text_("") {
  const ExchangeRecord* e = ReferenceData::Current().FindExchange(exchangeId);
  if (e != nullptr && e->alias) {
    value_ = exchangeId;
    text_ = e->alias->c_str();
  }
}

bool AEnum_ExchNameAliases::IsValidValue(int exchangeId) {
  const ExchangeRecord* e = ReferenceData::Current().FindExchange(exchangeId);
  return e != nullptr && e->alias.has_value();
}

const char* AEnum_ExchNameAliases::Enum2AuxStr() const { return text_; }

const char* AEnum_ProdIDs::Name(int value) {
  for (const TypeName& t : kProductTypes) {
    if (t.value == value) return t.name;
  }
  return "";
}

int AEnum_ProdIDs::FromName(std::string_view name) {
  for (const TypeName& t : kProductTypes) {
    if (name == t.name) return t.value;
  }
  return -1;
}

}  // namespace dv_core_ns
