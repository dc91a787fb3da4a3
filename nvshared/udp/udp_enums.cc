#include "nvshared/udp/udp_enums.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace nv_ns {
namespace {

// Process-wide constant strings, built on first use and never destroyed, so
// references to them hold through static destruction.
struct Names {
  const std::string invalid{"Invalid"};
  const std::string empty;
  const std::string priceType[7] = {
      "", "Net Change", "", "Yield To Maturity", "", "", "Par Rate"};
  const std::string priceTypeEx[7] = {
      "", "Net Change",     "Yield",   "Yield To Maturity",
      "", "Exchange Price", "Par Rate"};
  const std::string exchPrice[3] = {"Ticks", "Decimal", "1/Price"};
  const std::string netChange[3] = {"Native", "Ticks", "Decimal"};
  const std::string yield[6] = {"",
                                "No Conversion",
                                "(100-Price)",
                                "((10000-Price)/100)",
                                "((10000-(Price+Strip Base))/100)",
                                "((100000-Price)/1000)"};
  const std::string dayCount[6] = {"Actual/Actual", "Actual/360", "30/360",
                                   "30/365",        "30E/360",    "Actual/365"};
  const std::string annual{"Annual"};
  const std::string semiAnnual{"Semi Annual"};
  const std::string quarterly{"Quarterly"};
  const std::string monthly{"Monthly"};
};

const Names& N() {
  static const Names* const names = new Names;
  return *names;
}

template <std::size_t Size>
const std::string& Lookup(const std::string (&table)[Size], std::int32_t first,
                          std::int32_t value) {
  if (value < first || value >= static_cast<std::int32_t>(Size)) {
    return N().invalid;
  }
  return table[value];
}

}  // namespace

const std::string& UDPEnumNames::GetPriceTypeName(UDPPriceType type) {
  return Lookup(N().priceType, 1, type);
}

const std::string& UDPEnumNames::GetPriceTypeNameEx(UDPPriceType type) {
  return Lookup(N().priceTypeEx, 1, type);
}

const std::string& UDPEnumNames::GetPriceTypeName(UDPExchPriceType type) {
  return Lookup(N().exchPrice, 0, type);
}

const std::string& UDPEnumNames::GetPriceTypeName(UDPNetChangeType type) {
  return Lookup(N().netChange, 0, type);
}

const std::string& UDPEnumNames::GetPriceTypeName(UDPYieldType type) {
  return Lookup(N().yield, 1, type);
}

const std::string& UDPEnumNames::GetCouponFreqString(UDPCouponFreq freq) {
  switch (freq) {
    case UDPCouponFreq::Annual:
      return N().annual;
    case UDPCouponFreq::SemiAnnual:
      return N().semiAnnual;
    case UDPCouponFreq::Quarterly:
      return N().quarterly;
    case UDPCouponFreq::Monthly:
      return N().monthly;
    default:
      return N().invalid;
  }
}

const std::string& UDPEnumNames::GetDayCountTypeString(UDPDayCountType type) {
  return Lookup(N().dayCount, 0, type);
}

}  // namespace nv_ns
