#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "nvshared/naming/internal/formatter_peer.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/testing/sample_data.h"
#include "nvshared/testing/test_data.h"

namespace nv_fmt {

namespace {

using dv_core_ns::FullLegList;
using dv_core_ns::Leg;
using dv_core_ns::LegList;
using dv_core_ns::SeriesID;
using nvshared::testing::SampleSeries;

// Exchanges of the sample data.
constexpr int kCmeA = 7;  // CME-A (Globex), market CME
constexpr int kLmeA = 26;
constexpr int kIce = 32;
constexpr int kBtec = 40;
constexpr int kNasdaq = 71;
constexpr int kHotspot = 72;

SeriesNameFormatter& Formatter() { return SeriesNameFormatter::Instance(); }

class NamingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    nvshared::testing::InstallSampleReferenceData();
    Reset();
  }
  void TearDown() override { Reset(); }
  static void Reset() {
    Formatter().SetSeriesNameEnabled(false);
    Formatter().SetProductNameEnabled(false);
    for (int id : {kCmeA, kLmeA, kIce}) {
      Formatter().SetSeriesNameEnabled(id, false);
    }
    SeriesNameFormatterPeer::Clear();
  }
  static std::string Name(
      const SeriesID& series,
      const FormatContractConfig& config = DefaultFormatContractConfig) {
    std::string out = "stale";
    Formatter().FormatContract(series, out, config);
    return out;
  }
};

// Applies one word of the name table's switches and config changes.
void Apply(const std::string& word, FormatContractConfig& c) {
  if (word == "products") return Formatter().SetProductNameEnabled(true);
  if (word == "seriesNames") return Formatter().SetSeriesNameEnabled(true);
  if (word == "lmeSeriesNames") {
    return Formatter().SetSeriesNameEnabled(kLmeA, true);
  }
  if (word == "compact") return void(c.compact = true);
  if (word == "market") return void(c.showMarket = true);
  if (word == "exchange") return void(c.showExchange = true);
  if (word == "plain") return void(c.flavoredExchange = false);
  if (word == "noProduct") return void(c.showProduct = false);
  if (word == "byName") return void(c.productNameStyle = NameStyle::Name);
  if (word == "mode1") return void(c.seriesNameMode = 1);
  if (word == "mode2") return void(c.seriesNameMode = 2);
  if (word == "strikeWithSeriesName")
    return void(c.strikeWithSeriesName = true);
  if (word == "repeatProduct") return void(c.repeatProduct = true);
  ADD_FAILURE() << "unknown word " << word;
}

TEST_F(NamingTest, GoldenNamesBySwitchesAndConfig) {
  for (const auto& row : nvshared::testing::ReadTestTable(
           "nvshared/naming/testdata/contract_names.txt", 4)) {
    SCOPED_TRACE(row.where);
    Reset();
    FormatContractConfig config = DefaultFormatContractConfig;
    std::istringstream words(row[2]);
    for (std::string word; words >> word;) Apply(word, config);
    EXPECT_EQ(Name(SampleSeries(std::stoi(row[0]), row[1]), config), row[3]);
  }
  // A flavour and its plain exchange share the switch.
  Formatter().SetSeriesNameEnabled(kLmeA, true);
  EXPECT_TRUE(Formatter().IsSeriesNameEnabled(25));
  // The expiry alone follows the switch too, unless asked for the expiry only.
  const SeriesID& weekly = SampleSeries(kCmeA, "ESW1H4");
  Formatter().SetSeriesNameEnabled(true);
  FormatContractConfig only = DefaultFormatContractConfig;
  only.expiryOnly = true;
  std::string out;
  Formatter().FormatExpiry(weekly, out, only);
  EXPECT_EQ(out, "07Mar14");
  Formatter().FormatExpiry(weekly, out, DefaultFormatContractConfig);
  EXPECT_EQ(out, "Week 1 Mar14");
}

TEST_F(NamingTest, ProductNameStyles) {
  const SeriesID& es = SampleSeries(kCmeA, "ESH4");
  std::string out;
  // Alias wins over the product-name switch; Default and Name are in the
  // name tables above.
  Formatter().SetProductNameEnabled(true);
  Formatter().FormatProduct(es, out, NameStyle::Alias);
  EXPECT_EQ(out, "E-mini S&P 500");
  Formatter().FormatAlias(es.product, out, false);
  EXPECT_EQ(out, "ES");
  // No alias: the code, whatever the style.
  Formatter().FormatProduct(SampleSeries(kHotspot, "EURUSD"), out,
                            NameStyle::Alias);
  EXPECT_EQ(out, "EUR/USD");
}

// A synthetic series of the ES products, for values the sample lacks.
SeriesID Synthetic(int type, int strike, int divisor, int decimals) {
  SeriesID s =
      SampleSeries(kCmeA, type == dv_core_ns::OPTION ? "ESH4 C1850" : "ESH4");
  s.strike = strike;
  s.strikeDivisor = divisor;
  s.strikeDecimals = decimals;
  return s;
}

struct StrikeCase {
  int type;
  int ownStrike;
  int divisor;
  int decimals;
  int strike;
  bool compact;
  bool ok;
  const char* expected;
};

TEST_F(NamingTest, StrikesAndPrices) {
  constexpr int kOwn = SeriesNameFormatter::kSeriesStrike;
  constexpr int O = dv_core_ns::OPTION;
  constexpr int F = dv_core_ns::FUTURE;
  const StrikeCase cases[] = {
      {O, 15050, 100, 2, kOwn, false, true, "150.50"},
      {O, 1500, 1, 0, kOwn, false, true, "1500"},
      {O, 0, 1, 0, kOwn, false, true, "0.0"},
      {O, -50, 100, 2, kOwn, false, true, "-0.50"},
      {O, -1500, 1, 0, kOwn, false, true, "-1500"},
      {O, 1500, 0, 0, kOwn, false, false, ""},
      {O, 1500, -5, 0, kOwn, false, false, ""},
      // A corrupt decimal count is cut to 20 characters like everything else.
      {O, 15050, 100, 1000000, kOwn, false, true, "150.0000000000000000"},
      // Leg-priced: own strike 1, a price of the leg, with any sign.
      {O, 1, 100, 2, -250, true, true, "-2.50"},
      {O, 1, 100, 2, 1, false, true, "0.01"},
      // Futures print positive prices only.
      {F, 0, 1, 0, kOwn, false, false, ""},
      {F, 0, 1, 0, 9850, true, true, "98.50"},
      {F, 0, 1, 0, -9850, false, false, ""},
  };
  for (const StrikeCase& c : cases) {
    const SeriesID s = Synthetic(c.type, c.ownStrike, c.divisor, c.decimals);
    std::string out = "stale";
    EXPECT_EQ(Formatter().FormatStrike(s, out, c.compact, c.strike), c.ok)
        << c.ownStrike << " " << c.strike;
    EXPECT_EQ(out, c.expected) << c.ownStrike << " " << c.strike;
  }
}

struct MonthCase {
  int day;
  int month;
  int year;
  char version;
  bool monthCode;
  bool noDay;
  bool ok;
  const char* expected;
};

TEST_F(NamingTest, MonthsAndYears) {
  const MonthCase cases[] = {
      {15, 3, 2014, '0', false, false, true, "15Mar14"},
      {15, 3, 2014, '0', false, true, true, "Mar14"},
      {15, 3, 2014, '0', true, false, true, "15H4"},
      {0, 3, 2014, ' ', false, false, true, "Mar14"},
      {0, 12, 2009, '0', false, false, true, "Dec09"},
      // Month 0 prints nothing but is no failure.
      {0, 0, 2014, '0', false, false, true, ""},
      {0, 0, 2014, 'B', false, false, true, "B"},
      {0, 13, 2014, '0', false, false, false, ""},
      {0, 3, 99, '0', false, false, false, ""},
      {0, 3, 10000, '0', false, false, false, ""},
      {0, 3, 100, '0', false, false, true, "Mar00"},
  };
  for (const MonthCase& c : cases) {
    SeriesID s = SampleSeries(kCmeA, "ESH4 C1850");
    s.contractExpiry = dv_core_ns::Date(c.day, c.month, c.year);
    s.versionCode = c.version;
    std::string out = "stale";
    EXPECT_EQ(Formatter().FormatContrExpiry(s, out, c.monthCode, c.noDay), c.ok)
        << c.day << "/" << c.month << "/" << c.year;
    EXPECT_EQ(out, c.expected) << c.day << "/" << c.month << "/" << c.year;
  }
  // Types without months: refused, or an empty code.
  std::string out;
  EXPECT_FALSE(Formatter().FormatContrExpiry(SampleSeries(kNasdaq, "MSFT"), out,
                                             false, false));
  SeriesID bond = SampleSeries(kBtec, "912828C24");
  bond.contractExpiry = dv_core_ns::Date(0, 3, 2014);
  EXPECT_TRUE(Formatter().FormatContrExpiry(bond, out, true, false));
  EXPECT_EQ(out, "");
  EXPECT_FALSE(Formatter().FormatDayMonthAndYear(1, 0, 2014, out));
  EXPECT_TRUE(Formatter().FormatDayMonthAndYear(0, 1, 2014, out));
  EXPECT_EQ(out, "Jan14");
}

TEST_F(NamingTest, SpreadTypeNames) {
  std::string out;
  const std::pair<int, const char*> cases[] = {
      {500, ""}, {539, ""}, {516, "Calendar"}, {552, "Custom Market"},
      {499, ""}, {587, ""}};
  for (const auto& [code, expected] : cases) {
    EXPECT_TRUE(Formatter().FormatSpreadType(code, out));
    EXPECT_EQ(out, expected) << code;
  }
}

TEST_F(NamingTest, CustomNamesReplaceTheNameButNeverALegs) {
  const SeriesID& es = SampleSeries(kCmeA, "ESH4");
  const SeriesID& calendar = SampleSeries(kCmeA, "ESH4-ESM4");
  SeriesNameFormatterPeer::AddName(es, "My Future");
  EXPECT_EQ(Name(es), "My Future");
  FormatContractConfig noCustom = DefaultFormatContractConfig;
  noCustom.useCustomName = false;
  EXPECT_EQ(Name(es, noCustom), "E-mini S&P 500 Mar14");
  // The legs of a spread keep their own names, in the name shown and in the
  // default name, which leads with the market; a named spread is its name.
  Formatter().SetProductNameEnabled(true);
  EXPECT_EQ(Name(calendar), "Calendar: 1xES Mar14:-1xJun14");
  dv_core_ns::FullLegList legs;
  legs.combCode = 516;
  legs.legs.emplace_back(es, 1, 0);
  legs.legs.emplace_back(SampleSeries(kCmeA, "ESM4"), -1, 0);
  EXPECT_EQ(SeriesNameFormatterPeer::DefaultName(calendar, &legs),
            "CME Calendar: 1xES Mar14:-1xJun14");
  EXPECT_EQ(SeriesNameFormatterPeer::DefaultName(calendar, nullptr), "CME ");
  SeriesNameFormatterPeer::AddName(calendar, "Roll");
  EXPECT_EQ(Name(calendar), "Roll");
}

TEST_F(NamingTest, RegistryHash) {
  EXPECT_EQ(RegistryHash(""), 2166136261u);
  // One character: (2166136261 * 16777619) ^ 'A' in 32 bits.
  EXPECT_EQ(RegistryHash("A"), ((2166136261u * 16777619u) ^ 0x41u));
  // A negative character is XORed sign-extended.
  EXPECT_EQ(RegistryHash("\xff"), ((2166136261u * 16777619u) ^ 0xffffffffu));
  // Long texts sample every (length / 10 + 1)-th character.
  EXPECT_EQ(RegistryHash("ABCDEFGHIJK"), RegistryHash("AxCxExGxIxK"));
  // Up to nine characters, every one counts.
  EXPECT_NE(RegistryHash("ABCDEFGHI"), RegistryHash("AxCxExGxI"));
}

Leg MakeLeg(const SeriesID& series, int ratio, const char* price = nullptr) {
  Leg leg(boost::make_shared<const SeriesID>(series), ratio, 0);
  if (price != nullptr) leg.StoreAgileData<std::string>(1003, price);
  return leg;
}

Leg MakeLeg(const char* key, int ratio, const char* price = nullptr) {
  return MakeLeg(SampleSeries(kCmeA, key), ratio, price);
}

LegList MakeList(int combCode, std::vector<Leg> legs) {
  LegList list;
  list.combCode = static_cast<std::int16_t>(combCode);
  list.legs = std::move(legs);
  return list;
}

// A leg list as the testdata tables write it: "516: ESH4 1, ESM4 -1 @2" is
// combination 516 of CME-A's ESH4 at ratio 1 and ESM4 at -1 with the price
// "2"; a key ending in "/plain" is the series moved to the plain CME.
LegList ParseList(const std::string& text) {
  const auto colon = text.find(':');
  std::vector<Leg> legs;
  std::istringstream list(text.substr(colon + 1));
  for (std::string leg; std::getline(list, leg, ',');) {
    std::istringstream in(leg);
    std::string key, price;
    int ratio = 0;
    in >> key >> ratio >> price;
    const bool plain = key.ends_with("/plain");
    SeriesID series = SampleSeries(kCmeA, key.substr(0, key.find('/')));
    if (plain) series.product.exchange = 10;
    legs.push_back(
        MakeLeg(series, ratio, price.empty() ? nullptr : price.c_str() + 1));
  }
  return MakeList(std::stoi(text.substr(0, colon)), std::move(legs));
}

std::vector<int> Ratios(const std::vector<Leg>& legs) {
  std::vector<int> ratios;
  for (const Leg& leg : legs) ratios.push_back(leg.ratio);
  return ratios;
}

class LegNamingTest : public NamingTest {
 protected:
  void SetUp() override {
    NamingTest::SetUp();
    Formatter().SetProductNameEnabled(true);
  }
};

TEST_F(LegNamingTest, LegListTexts) {
  for (const auto& row : nvshared::testing::ReadTestTable(
           "nvshared/naming/testdata/leg_list_names.txt", 3)) {
    SCOPED_TRACE(row.where);
    FormatContractConfig config = DefaultFormatContractConfig;
    config.compact = row[1].find("compact") != std::string::npos;
    config.showRatioSign = row[1].find("sign") != std::string::npos;
    std::string out = "stale";
    EXPECT_TRUE(Formatter().FormatLegList(ParseList(row[0]), out, config));
    EXPECT_EQ(out, row[2]);
  }
}

TEST_F(LegNamingTest, ThreeTextsAndFullLists) {
  const LegList list = MakeList(516, {MakeLeg("ESH4", 1), MakeLeg("ESM4", -1)});
  std::string exchange = "x", type = "x", legs = "x";
  EXPECT_TRUE(Formatter().FormatLegList(list, exchange, type, legs,
                                        DefaultFormatContractConfig));
  EXPECT_EQ(exchange, "CME-A (Globex)");
  EXPECT_EQ(type, "Calendar");
  EXPECT_EQ(legs, "1xES Mar14:-1xJun14");

  FormatContractConfig compact = DefaultFormatContractConfig;
  compact.compact = true;
  FullLegList full;
  full = list;
  EXPECT_TRUE(Formatter().FormatLegList(full, exchange, type, legs, compact));
  EXPECT_EQ(type, "");
  EXPECT_EQ(legs, "ES H4-M4");

  EXPECT_FALSE(Formatter().FormatLegList(LegList(), exchange, type, legs,
                                         DefaultFormatContractConfig));
  EXPECT_EQ(exchange + type + legs, "");
  std::string out = "x";
  EXPECT_FALSE(Formatter().FormatLegList(FullLegList(), out,
                                         DefaultFormatContractConfig));
  EXPECT_EQ(out, "");
}

TEST_F(LegNamingTest, ExpandAndSplitNestedSpreads) {
  FullLegList full;
  full.combCode = 515;
  full.legs.emplace_back(SampleSeries(kCmeA, "ESH4-ESM4"), -2, 0);
  full.legs.emplace_back(SampleSeries(kCmeA, "ESZ4"), 1, 0);
  // A spread whose legs are unknown adds nothing.
  full.legs.emplace_back(SampleSeries(kCmeA, "ESU4-ESZ4"), 1, 0);

  LegList out;
  out.legs.push_back(MakeLeg(SampleSeries(8, "NQH4"), 5));  // not cleared first
  SeriesNameFormatter::ExpandLegLists(full, out);
  EXPECT_EQ(out.combCode, 515);
  EXPECT_EQ(Ratios(out.legs), (std::vector<int>{5, -2, 2, 1}));
  EXPECT_STREQ(out.legs[1].GetSharedSeriesID()->seriesKey, "ESH4");
  EXPECT_STREQ(out.legs[3].GetSharedSeriesID()->seriesKey, "ESZ4");

  std::vector<Leg> split;
  SeriesNameFormatter::SplitLegsForSpreadOrStrategy(MakeLeg("ES BF H4", 3),
                                                    split);
  EXPECT_EQ(Ratios(split), (std::vector<int>{3, -6, 3}));
  SeriesNameFormatter::SplitLegsForSpreadOrStrategy(MakeLeg("ESH4", 2), split);
  EXPECT_EQ(split.size(), 4u);
  EXPECT_FALSE(SeriesNameFormatter::IsStrategyOrSpread(Leg()));
  EXPECT_TRUE(SeriesNameFormatter::isStrategy(SampleSeries(kCmeA, "ES BF H4")));
  EXPECT_TRUE(
      SeriesNameFormatter::isStrategy(SampleSeries(kCmeA, "ESH4-ESM4")));
}

TEST_F(LegNamingTest, EarliestExpiringLeg) {
  SeriesID calendar = SampleSeries(kCmeA, "ESH4-ESM4");
  std::unique_ptr<SeriesID> earliest(nv_ns::GetEarliestExpiringLeg(&calendar));
  ASSERT_NE(earliest, nullptr);
  EXPECT_STREQ(earliest->seriesKey, "ESH4");
  // Equal expiries: the first leg wins.
  SeriesID fly = SampleSeries(kCmeA, "ES BF H4");
  earliest.reset(nv_ns::GetEarliestExpiringLeg(&fly));
  ASSERT_NE(earliest, nullptr);
  EXPECT_STREQ(earliest->seriesKey, "ESH4 C1850");

  SeriesID outright = SampleSeries(kCmeA, "ESH4");
  SeriesID unknownLegs = SampleSeries(kCmeA, "ESU4-ESZ4");
  EXPECT_EQ(nv_ns::GetEarliestExpiringLeg(nullptr), nullptr);
  EXPECT_EQ(nv_ns::GetEarliestExpiringLeg(&outright), nullptr);
  EXPECT_EQ(nv_ns::GetEarliestExpiringLeg(&unknownLegs), nullptr);
}

TEST_F(LegNamingTest, UnflavouredIdentities) {
  const std::pair<int, int> ids[] = {
      {7, 10},  {8, 10},  {10, 10}, {3, 1},
      {21, 20}, {26, 25}, {0, 60},  // exchange 0 counts as the Legwise market
      {-1, -1}, {11, -1}, {999, -1}};
  for (const auto& [flavoured, plain] : ids) {
    dv_core_ns::AEnum_ExchIds id(flavoured);
    SeriesNameFormatter::MakeUnflavoredExchangeID(id);
    EXPECT_EQ(static_cast<int>(id), plain) << flavoured;
  }

  const SeriesID& es = SampleSeries(kCmeA, "ESH4");
  // Ids without a plain exchange all unflavour to -1 and then compare equal.
  dv_core_ns::ProdID a(11, dv_core_ns::FUTURE, "ES");
  dv_core_ns::ProdID b(999, dv_core_ns::FUTURE, "ES");
  EXPECT_TRUE(SeriesNameFormatter::EquivalentProductIDs(a, b));
  EXPECT_FALSE(SeriesNameFormatter::EquivalentProductIDs(a, es.product));

  FullLegList list;
  list.legs.emplace_back(es, 1, 0);
  list.legs.back().StoreAgileData<std::string>(1003, "kept");
  SeriesNameFormatter::MakeUnflavoredLegList(list);
  EXPECT_EQ(
      static_cast<int>(list.legs[0].GetSharedSeriesID()->product.exchange), 10);
  ASSERT_NE(list.legs[0].FindAgileData(1003), nullptr);
  EXPECT_EQ(*list.legs[0].FindAgileData(1003), "kept");
}

TEST_F(LegNamingTest, EquivalentLegLists) {
  for (const auto& row : nvshared::testing::ReadTestTable(
           "nvshared/naming/testdata/leg_list_equivalence.txt", 4)) {
    SCOPED_TRACE(row.where);
    EXPECT_EQ(SeriesNameFormatter::EquivalentLegLists(
                  ParseList(row[0]), ParseList(row[1]), row[2] == "relaxed"),
              row[3] == "yes");
  }
  // The overloads over full lists agree.
  const LegList a = ParseList("516: ESH4 1, ESM4 -1");
  const LegList b = ParseList("516: ESM4 -1, ESH4 1");
  FullLegList fa, fb;
  fa = a;
  fb = b;
  EXPECT_TRUE(SeriesNameFormatter::EquivalentLegLists(fa, b, false));
  EXPECT_TRUE(SeriesNameFormatter::EquivalentLegLists(a, fb, false));
  EXPECT_TRUE(SeriesNameFormatter::EquivalentLegLists(fa, fb, false));
}

TEST_F(LegNamingTest, ConcurrencyUnflavouringNewIds) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 2; ++t) {
    threads.emplace_back([] {
      for (int i = 100; i < 180; ++i) {
        dv_core_ns::AEnum_ExchIds id(i);
        SeriesNameFormatter::MakeUnflavoredExchangeID(id);
        EXPECT_EQ(static_cast<int>(id), -1);
      }
    });
  }
  for (auto& t : threads) t.join();
}

}  // namespace
}  // namespace nv_fmt
