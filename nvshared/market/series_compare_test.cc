#include "nvshared/market/series_compare.h"

#include <functional>
#include <string>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/testing/sample_data.h"

namespace nv_ns {
namespace {

using dv_core_ns::SeriesID;
using nvshared::testing::SampleSeries;

int Sign(int v) { return (v > 0) - (v < 0); }

// A sample series with some fields changed.
SeriesID S(int exchange, const char* key,
           const std::function<void(SeriesID&)>& change = nullptr) {
  nvshared::testing::InstallSampleReferenceData();
  SeriesID series = SampleSeries(exchange, key);
  if (change) change(series);
  return series;
}

std::function<void(SeriesID&)> Strike(int strike, int divisor, char callPut) {
  return [=](SeriesID& s) {
    s.strike = strike;
    s.strikeDivisor = divisor;
    s.callPut = callPut;
  };
}

std::function<void(SeriesID&)> Named(const char* name, int combCode = 0) {
  return [=](SeriesID& s) {
    s.seriesName.Assign(name);
    if (combCode != 0) s.combCode = static_cast<std::int16_t>(combCode);
  };
}

struct OrderCase {
  const char* what;
  SeriesID a;
  SeriesID b;
  int expected;  // the sign of SeriesCompare(a, b); the reverse gives -sign
};

// The screens' order, one ordered pair per rule. Series names are off, as
// they are by default.
TEST(SeriesCompareTest, OrdersPairsAsTheScreensDo) {
  const OrderCase cases[] = {
      {"date before name", S(7, "ESH4", Named("Z")), S(7, "ESM4", Named("A")),
       -1},
      {"market by number: CBOT (6) before CME (7)", S(3, "ZNH4"), S(7, "ESH4"),
       -1},
      {"flavours of one market: by product", S(7, "ESH4"), S(8, "NQH4"), -1},
      {"future before option", S(7, "ESH4"), S(7, "ESH4 C1850"), -1},
      {"strike", S(7, "ESH4 C1850"), S(7, "ESH4 C1900"), -1},
      {"1500/1 equals 15000/10, then call before put",
       S(7, "ESH4 C1850", Strike(1500, 1, 'C')),
       S(7, "ESH4 C1850", Strike(15000, 10, 'P')), -1},
      {"150.5 as 1505/10 and as 301/2",
       S(7, "ESH4 C1850", Strike(1505, 10, 'C')),
       S(7, "ESH4 C1850", Strike(301, 2, 'C')), 0},
      {"150.6 after 150.5 across divisors",
       S(7, "ESH4 C1850", Strike(1506, 10, 'C')),
       S(7, "ESH4 C1850", Strike(301, 2, 'C')), 1},
      {"a zero divisor passes the strikes over",
       S(7, "ESH4 C1850", Strike(1, 0, 'C')),
       S(7, "ESH4 C1850", Strike(9, 5, 'C')), 0},
      {"version code", S(7, "ESH4 C1850"),
       S(7, "ESH4 C1850", [](SeriesID& s) { s.versionCode = 'A'; }), -1},
      {"names off: alike to the version compare equal",
       S(7, "ESH4", Named("B")), S(7, "ESH4", Named("A")), 0},
      {"LME prompt marked R before a dated one, whatever the dates",
       S(26, "CA 3M"), S(26, "CA 20140416"), -1},
      {"two LME prompts by date", S(26, "CA CASH"), S(26, "CA 3M"), -1},
      {"BTec by term key", S(40, "912828C24"), S(40, "912828C65"), -1},
      {"BTec without keys: equal spans, then W after", S(40, "912828WE6"),
       S(40, "912828B66"), 1},
      {"BTec: FF first", S(40, "912828B66FF"), S(40, "912828B66"), -1},
      {"ICE strips by their first month",
       S(32, "B Q1-15", Named("Jan13-Mar13")),
       S(32, "B Q1-15", Named("Feb13-Mar13")), -1},
      {"ICE strips by their second month",
       S(32, "B Q1-15", Named("Jan13-Mar13")),
       S(32, "B Q1-15", Named("Jan13-Feb13")), 1},
      {"an invalid strip before every valid one",
       S(32, "B Q1-15", Named("Xxx13-Mar13")),
       S(32, "B Q1-15", Named("Jan13-Jan13")), -1},
      {"two invalid strips", S(32, "B Q1-15", Named("Xxx13-Mar13")),
       S(32, "B Q1-15", Named("Yyy13-Mar13")), 0},
      {"Legwise by series name", S(60, "LW ES H4/M4"),
       S(60, "LW ES H4/M4", Named("ES H4/U4")), -1},
      {"spreads by their legs", S(7, "ESH4-ESM4"), S(7, "ESM4-ESU4"), -1},
      {"a spread with unknown legs equals any of its product",
       S(7, "ESU4-ESZ4"), S(7, "ESH4-ESM4"), 0},
      {"custom spreads by name first", S(7, "ESH4-ESM4", Named("B", 552)),
       S(7, "ESH4-ESM4", Named("A", 552)), 1},
  };
  for (const OrderCase& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Sign(SeriesCompare(&c.a, &c.b)), c.expected);
    EXPECT_EQ(Sign(SeriesCompare(&c.b, &c.a)), -c.expected);
    EXPECT_EQ(SeriesLessThan(c.a, c.b), c.expected < 0);
    EXPECT_EQ(SeriesGreaterThan(c.a, c.b), c.expected > 0);
  }
}

TEST(SeriesCompareTest, SeriesNamesDecideOnlyWhereShown) {
  const SeriesID a = S(7, "ESH4", Named("A"));
  const SeriesID b = S(7, "ESH4", Named("B"));
  auto& formatter = nv_fmt::SeriesNameFormatter::Instance();
  formatter.SetSeriesNameEnabled(10, true);  // the plain CME, for CME-A
  EXPECT_LT(SeriesCompare(&a, &b), 0);
  formatter.SetSeriesNameEnabled(10, false);
  EXPECT_EQ(SeriesCompare(&a, &b), 0);
  // Leg form: the legs' strikes stand in for the series'.
  const auto shared = boost::make_shared<const SeriesID>(S(7, "ESH4 C1850"));
  const dv_core_ns::Leg low(shared, 1, 100), high(shared, 1, 200);
  const dv_core_ns::Leg twice(shared, 2, 100);
  EXPECT_LT(SeriesCompare(&low, &high), 0);
  EXPECT_EQ(SeriesCompare(&low, &twice), 0);
  EXPECT_LT(LegCompare(&low, &twice), 0);
}

struct NameCase {
  const char* a;
  const char* b;
  int expected;
};

TEST(SeriesCompareTest, SpreadNamesPutLowerCaseFirst) {
  const NameCase cases[] = {
      {"abc", "ABC", -1}, {"ABC", "abc", 1},     {"aBc", "abc", 1},
      {"abc", "abd", -1}, {"ABC", "abd", -1},    {"abc", "abc", 0},
      {nullptr, "a", -1}, {nullptr, nullptr, 0},
  };
  for (const NameCase& c : cases) {
    SCOPED_TRACE(std::string(c.a ? c.a : "null") + " " + (c.b ? c.b : "null"));
    EXPECT_EQ(Sign(SpreadNameCompare(c.a, c.b)), c.expected);
  }
}

TEST(SeriesCompareTest, ProductsExchangesAndMarkets) {
  nvshared::testing::InstallSampleReferenceData();
  // Markets by name: BTec (22) before CBOT (6).
  EXPECT_LT(MarketCompare(22, 6), 0);
  EXPECT_EQ(MarketCompare(7, 7), 0);
  EXPECT_EQ(MarketCompare(150, 160), -10);  // no names: the difference
  // Exchanges by flavoured name: "CME" < "CME-A (Globex)" < "CME-B".
  EXPECT_LT(ExchangeCompare(10, 7), 0);
  EXPECT_LT(ExchangeCompare(7, 8), 0);
  // Bonds off BTec: a key on one side only falls through to the name.
  dv_core_ns::ProdID a(70, dv_core_ns::BOND, "BBB");
  dv_core_ns::ProdID b(70, dv_core_ns::BOND, "AAA");
  a.StoreAgileData<std::string>(1038, "1");
  EXPECT_GT(ProductsCompare(a, b), 0);
  b.StoreAgileData<std::string>(1038, "2");
  EXPECT_LT(ProductsCompare(a, b), 0);
  // Same name, types decide: -1 or 1.
  const dv_core_ns::ProdID future(7, dv_core_ns::FUTURE, "es");
  const dv_core_ns::ProdID option(8, dv_core_ns::OPTION, "ES");
  EXPECT_EQ(ProductsCompare(future, option), -1);
  EXPECT_GT(ProductsExchCompare(option, future), 0);  // CME-B after CME-A
  EXPECT_LT(ProductsMarketCompare(option, 22, future, 7), 0);  // BTec first
}

}  // namespace
}  // namespace nv_ns
