// The reference data every test binary installs once. The library's caches
// never refresh, so one fixture per binary is designed to cover all its
// cases, and tests only ever add to what it holds by reading it.
//
// Exchanges (id name market [alias]):
//    0 DV        DV(31)              7 CME-A   CME(7)  [Globex]
//    1 CBOT      CBOT(6)             8 CME-B   CME(7)
//    2 CBOT-A    CBOT(6)             9 FIX-A   FIX-A(34)
//    3 eCBOT-A   CBOT(6) [Electronic]
//    4 ecbot     CBOT(6)            10 CME     CME(7)
//    5 eCBOT     ICE_IPE(32)        20 SSE-1   SSE(85)
//   21 ALGO-1    AlgoSE(88)         22 LW      Legwise(84)
//   30 LIFFE     NYSE_Liffe(3) [London]
//   40 NOMKT     LME(79): no exchange named like its market
// EnumMax() is 180. Ids 11, 50 and 179 name no exchange.
#ifndef NVSHARED_TESTING_REFERENCE_FIXTURE_H_
#define NVSHARED_TESTING_REFERENCE_FIXTURE_H_

#include "nvshared/platform/core/reference_data.h"

namespace nvshared::testing {

inline constexpr int kTestExchangeIdCount = 180;

// Installs the fixture the first time it is called; later calls do nothing.
void InstallTestReferenceData();

// The fixture as a builder's result, for tests of the store itself.
std::unique_ptr<const dv_core_ns::ReferenceData> BuildTestReferenceData();

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_REFERENCE_FIXTURE_H_
