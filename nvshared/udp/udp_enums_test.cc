#include "nvshared/udp/udp_enums.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace nv_ns {
namespace {

// Each lookup from -1 to one past its last value, the names joined by "|".
// Values with no name of their own read "Invalid"; price types 2, 4 and 5
// have an empty plain name.
TEST(UDPEnumNamesTest, NamesFromMinusOneOn) {
  using N = UDPEnumNames;
  const std::pair<std::function<std::string(int)>, std::string> lookups[] = {
      {[](int v) { return N::GetPriceTypeName(UDPPriceType(v)); },
       "Invalid|Invalid|Net Change||Yield To Maturity|||Par Rate|Invalid"},
      {[](int v) { return N::GetPriceTypeNameEx(UDPPriceType(v)); },
       "Invalid|Invalid|Net Change|Yield|Yield To Maturity||Exchange Price|"
       "Par Rate|Invalid"},
      {[](int v) { return N::GetPriceTypeName(UDPExchPriceType(v)); },
       "Invalid|Ticks|Decimal|1/Price|Invalid"},
      {[](int v) { return N::GetPriceTypeName(UDPNetChangeType(v)); },
       "Invalid|Native|Ticks|Decimal|Invalid"},
      {[](int v) { return N::GetPriceTypeName(UDPYieldType(v)); },
       "Invalid|Invalid|No Conversion|(100-Price)|((10000-Price)/100)|"
       "((10000-(Price+Strip Base))/100)|((100000-Price)/1000)|Invalid"},
      {[](int v) { return N::GetDayCountTypeString(UDPDayCountType(v)); },
       "Invalid|Actual/Actual|Actual/360|30/360|30/365|30E/360|Actual/365|"
       "Invalid"},
      {[](int v) { return N::GetCouponFreqString(UDPCouponFreq(v)); },
       "Invalid|Invalid|Annual|Semi Annual|Invalid|Quarterly|Invalid|Invalid|"
       "Invalid|Invalid|Invalid|Invalid|Invalid|Monthly|Invalid"},
  };
  for (const auto& [name, joined] : lookups) {
    SCOPED_TRACE(joined);
    const auto count = std::count(joined.begin(), joined.end(), '|') + 1;
    std::string got = name(-1);
    for (int v = 0; v + 1 < count; ++v) got += "|" + name(v);
    EXPECT_EQ(got, joined);
  }
}

}  // namespace
}  // namespace nv_ns
