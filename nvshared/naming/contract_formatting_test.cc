#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "nvshared/naming/internal/formatter_peer.h"
#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/testing/sample_data.h"

namespace nv_fmt {

namespace {

using dv_core_ns::FullLegList;
using dv_core_ns::Leg;
using dv_core_ns::LegList;
using dv_core_ns::SeriesID;
using nvshared::testing::SampleSeries;

// Exchanges of the sample data.
constexpr int kCmeA = 7;  // CME-A (Globex), market CME
constexpr int kEcbotA = 3;
constexpr int kFixA = 9;
constexpr int kLiffe = 21;
constexpr int kLmeA = 26;
constexpr int kIce = 32;
constexpr int kBtec = 40;
constexpr int kTocom = 50;
constexpr int kLegwise = 60;
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

struct NameCase {
  int exchange;
  const char* key;
  const char* expected;
};

// Every shape of contract in the sample, by the default config with products
// shown by their code.
TEST_F(NamingTest, NamesEveryShapeWithTheDefaultConfig) {
  Formatter().SetProductNameEnabled(true);
  const NameCase cases[] = {
      {kCmeA, "ESH4", "ES Mar14"},
      {kCmeA, "ESW1H4", "ES 07Mar14"},
      {kCmeA, "ESH4 C1850", "ES Mar14 C1850.00"},
      {kCmeA, "EWAH4 C1850", "ES AMar14 C1850.00"},
      // Own strike 1 with no leg strike: the letter and the strike as such.
      {kCmeA, "ESH4 C-LP", "ES Mar14 C0.01"},
      {kCmeA, "ESH4-ESM4", "Calendar: 1xES Mar14:-1xJun14"},
      // Spread type 539 has no name: the legs alone.
      {kCmeA, "ESM4-ESU4", "1xES Jun14:-1xSep14"},
      {kCmeA, "ESU4-ESZ4", "Calendar (Contract name not available)"},
      // Legs of different products repeat the product.
      {kCmeA, "ES-NQ H4", "Inter-Product: 2xES Mar14:-3xNQ Mar14"},
      // A Custom Market spread is its series name.
      {kCmeA, "ES CM1", "ES Mar/Jun Roll"},
      // The first leg has no sign, the later ones do.
      {kCmeA, "ES BF H4",
       "Butterfly: 1xES Mar14 C1850.00:-2xMar14 C1900.00:+1xMar14 C1850.00"},
      // A future leg with a price, and a leg-priced option by its price.
      {kCmeA, "ES COV H4", "Covered: 1xES Mar14@1850.25:-1xES Mar14@1850.00"},
      {kEcbotA, "OZNJ4 C125", "ZN Apr14 C125.0"},
      // The doubled minus of a negative strike, and 0.00 for strike 0.
      {kFixA, "CLM4 P-1.5", "CL Jun14 P--1.50"},
      {kFixA, "CLM4 C0", "CL Jun14 C0.00"},
      {kLiffe, "LH4", "L 19Mar14"},
      {kLiffe, "LH4-LM4", "Calendar: 1xL 19Mar14:-1x18Jun14"},
      {kLmeA, "CA CASH", "CA 05Mar14"},
      // ICE product without a price table: the series name.
      {kIce, "B Q1-15", "B Jan15-Mar15"},
      {kIce, "B F15", "B Jan15"},
      // Bonds and stocks named like their product print the series name only.
      {kBtec, "912828C24", "2YR"},
      {kBtec, "912828WE6", "W_10YR"},
      {kTocom, "JAU1502", "JAU Feb15"},
      // A type FormatMonth does not know: the product alone.
      {kLegwise, "LW ES H4/M4", "ES-LW"},
      {kNasdaq, "MSFT", "MSFT"},
      // Forex without an expiry and without series names shown: nothing.
      {kHotspot, "EURUSD", ""},
  };
  for (const NameCase& c : cases) {
    EXPECT_EQ(Name(SampleSeries(c.exchange, c.key)), c.expected) << c.key;
  }
}

struct ConfigCase {
  const char* what;
  int exchange;
  const char* key;
  std::function<void(FormatContractConfig&)> change;
  const char* expected;
};

TEST_F(NamingTest, ConfigFieldsShapeTheName) {
  using C = FormatContractConfig;
  const ConfigCase cases[] = {
      {"compact month code", kCmeA, "ESH4", [](C& c) { c.compact = true; },
       "E-mini S&P 500 H4"},
      {"compact with day", kLiffe, "LH4", [](C& c) { c.compact = true; },
       "Three Month Sterling 19H4"},
      {"compact drops the version code", kCmeA, "EWAH4 C1850",
       [](C& c) { c.compact = true; }, "E-mini S&P 500 Options H4 C1850.00"},
      {"compact price without @", kCmeA, "ES COV H4",
       [](C& c) { c.compact = true; },
       "E-mini S&P 500 H41850.25E-mini S&P 500 Options-H41850.00"},
      {"market lead", kCmeA, "ESH4", [](C& c) { c.showMarket = true; },
       "CME E-mini S&P 500 Mar14"},
      {"market wins over exchange", kCmeA, "ESH4",
       [](C& c) { c.showMarket = c.showExchange = true; },
       "CME E-mini S&P 500 Mar14"},
      {"flavoured exchange lead", kCmeA, "ESH4",
       [](C& c) { c.showExchange = true; },
       "CME-A (Globex) E-mini S&P 500 Mar14"},
      {"plain exchange lead", kCmeA, "ESH4",
       [](C& c) {
         c.showExchange = true;
         c.flavoredExchange = false;
       },
       "CME-A E-mini S&P 500 Mar14"},
      {"no product", kCmeA, "ESH4 C1850", [](C& c) { c.showProduct = false; },
       "Mar14 C1850.00"},
      {"product by code", kCmeA, "ESH4",
       [](C& c) { c.productNameStyle = NameStyle::Name; }, "ES Mar14"},
      {"product without alias", kHotspot, "EURUSD",
       [](C& c) { c.seriesNameMode = 1; }, "EUR/USD"},
      {"series name always", kCmeA, "ESW1H4",
       [](C& c) { c.seriesNameMode = 1; }, "E-mini S&P 500 Week 1 Mar14"},
      {"series name on a stock with a strike", kNasdaq, "MSFT",
       [](C& c) { c.strikeWithSeriesName = true; }, "MSFT"},
      // The spread's lead is always flavoured; the legs inherit the config
      // and lead with their own exchange as it asks.
      {"exchange lead on a spread", kCmeA, "ESH4-ESM4",
       [](C& c) {
         c.showExchange = true;
         c.flavoredExchange = false;
       },
       "CME-A (Globex) Calendar: 1xCME-A E-mini S&P 500 Mar14:-1xCME-A Jun14"},
      {"unknown legs lose the lead", kCmeA, "ESU4-ESZ4",
       [](C& c) { c.showMarket = true; },
       "Calendar (Contract name not available)"},
      {"product on every leg", kCmeA, "ESH4-ESM4",
       [](C& c) {
         c.repeatProduct = true;
         c.productNameStyle = NameStyle::Name;
       },
       "Calendar: 1xES Mar14:-1xES Jun14"},
  };
  for (const ConfigCase& c : cases) {
    FormatContractConfig config = DefaultFormatContractConfig;
    c.change(config);
    EXPECT_EQ(Name(SampleSeries(c.exchange, c.key), config), c.expected)
        << c.what;
  }
}

TEST_F(NamingTest, SeriesNameSwitches) {
  const SeriesID& weekly = SampleSeries(kCmeA, "ESW1H4");
  const SeriesID& cash = SampleSeries(kLmeA, "CA CASH");
  FormatContractConfig config = DefaultFormatContractConfig;
  config.productNameStyle = NameStyle::Name;

  Formatter().SetSeriesNameEnabled(kLmeA, true);
  EXPECT_EQ(Name(cash, config), "CA Cash");
  EXPECT_EQ(Name(weekly, config), "ES 07Mar14");
  // A flavour and its plain exchange share the switch.
  EXPECT_TRUE(Formatter().IsSeriesNameEnabled(25));

  Formatter().SetSeriesNameEnabled(true);
  EXPECT_EQ(Name(weekly, config), "ES Week 1 Mar14");
  // Any other mode ignores the switches.
  FormatContractConfig never = config;
  never.seriesNameMode = 2;
  EXPECT_EQ(Name(weekly, never), "ES 07Mar14");
  FormatContractConfig only = config;
  only.expiryOnly = true;
  std::string out;
  Formatter().FormatExpiry(weekly, out, only);
  EXPECT_EQ(out, "07Mar14");
  Formatter().FormatExpiry(weekly, out, config);
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

TEST_F(NamingTest, LegPricedOptionAndBadDivisorInNames) {
  Formatter().SetProductNameEnabled(true);
  const SeriesID lp = SampleSeries(kCmeA, "ESH4 C-LP");
  const dv_core_ns::Leg leg(boost::make_shared<const SeriesID>(lp), 1, 250000);
  std::string out;
  Formatter().FormatContract(leg, out, DefaultFormatContractConfig);
  EXPECT_EQ(out, "ES Mar14@2500.00");
  // Without a usable divisor the name simply lacks the strike.
  EXPECT_EQ(Name(Synthetic(dv_core_ns::OPTION, 1500, 0, 0)), "ES Mar14 C");
  // A future with a price behind the month.
  EXPECT_EQ(Name(Synthetic(dv_core_ns::FUTURE, 9850, 1, 0)), "ES Mar14@98.50");
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

TEST_F(NamingTest, CustomNamesReplaceTheName) {
  const SeriesID& es = SampleSeries(kCmeA, "ESH4");
  SeriesNameFormatterPeer::AddName(es, "My Future");
  EXPECT_EQ(Name(es), "My Future");
  FormatContractConfig noCustom = DefaultFormatContractConfig;
  noCustom.useCustomName = false;
  EXPECT_EQ(Name(es, noCustom), "E-mini S&P 500 Mar14");
  // The legs of a spread keep their own names; a named spread is its name.
  Formatter().SetProductNameEnabled(true);
  EXPECT_EQ(Name(SampleSeries(kCmeA, "ESH4-ESM4")),
            "Calendar: 1xES Mar14:-1xJun14");
  SeriesNameFormatterPeer::AddName(SampleSeries(kCmeA, "ESH4-ESM4"), "Roll");
  EXPECT_EQ(Name(SampleSeries(kCmeA, "ESH4-ESM4")), "Roll");
}

TEST_F(NamingTest, DefaultNamesLeadWithTheMarket) {
  Formatter().SetProductNameEnabled(true);
  const SeriesID& es = SampleSeries(kCmeA, "ESH4");
  SeriesNameFormatterPeer::AddName(es, "Mine");
  const SeriesID& calendar = SampleSeries(kCmeA, "ESH4-ESM4");
  dv_core_ns::FullLegList legs;
  legs.combCode = 516;
  legs.legs.emplace_back(es, 1, 0);
  legs.legs.emplace_back(SampleSeries(kCmeA, "ESM4"), -1, 0);
  // Legs are never named by their custom names.
  EXPECT_EQ(SeriesNameFormatterPeer::DefaultName(calendar, &legs),
            "CME Calendar: 1xES Mar14:-1xJun14");
  EXPECT_EQ(SeriesNameFormatterPeer::DefaultName(calendar, nullptr), "CME ");
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

TEST_F(NamingTest, ConcurrencyFormattingWhileSwitchesChange) {
  const SeriesID& weekly = SampleSeries(kCmeA, "ESW1H4");
  const SeriesID& spread = SampleSeries(kCmeA, "ES BF H4");
  std::vector<std::thread> threads;
  for (int t = 0; t < 2; ++t) {
    threads.emplace_back([&] {
      std::string out;
      for (int i = 0; i < 2000; ++i) {
        Formatter().FormatContract(weekly, out, DefaultFormatContractConfig);
        EXPECT_TRUE(out == "E-mini S&P 500 07Mar14" ||
                    out == "E-mini S&P 500 Week 1 Mar14" ||
                    out == "ES 07Mar14" || out == "ES Week 1 Mar14")
            << out;
        Formatter().FormatContract(spread, out, DefaultFormatContractConfig);
        EXPECT_FALSE(out.empty());
      }
    });
  }
  threads.emplace_back([] {
    for (int i = 0; i < 2000; ++i) {
      Formatter().SetSeriesNameEnabled(i % 2 == 0);
      Formatter().SetSeriesNameEnabled(kCmeA, i % 3 == 0);
      Formatter().SetProductNameEnabled(i % 5 == 0);
    }
  });
  for (auto& t : threads) t.join();
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

struct LegListCase {
  const char* what;
  LegList list;
  bool compact;
  bool showRatioSign;
  const char* expected;
};

TEST_F(LegNamingTest, LegListTexts) {
  const LegListCase cases[] = {
      {"ratio 1 prints 1x",
       MakeList(516, {MakeLeg("ESH4", 1), MakeLeg("ESM4", 1)}), false, false,
       "Calendar: 1xES Mar14:1xJun14"},
      {"ratio 0 in full form",
       MakeList(516, {MakeLeg("ESH4", 1), MakeLeg("ESM4", 0)}), false, true,
       "Calendar: 1xES Mar14:+0xJun14"},
      {"ratio 0 in compact form",
       MakeList(516,
                {MakeLeg("ESH4", 1), MakeLeg("ESM4", 0), MakeLeg("ESU4", -1)}),
       true, true, "ES H4-U4"},
      {"compact loses the ratio text",
       MakeList(516, {MakeLeg("ESH4", 3), MakeLeg("ESM4", 1)}), true, true,
       "ES H4+M4"},
      {"compact first leg of -1",
       MakeList(516, {MakeLeg("ESH4", -1), MakeLeg("ESM4", 1)}), true, false,
       "ES-H4 M4"},
      {"custom market prices, one missing",
       MakeList(552, {MakeLeg("ESH4", 1, "front"), MakeLeg("ESM4", -1)}), false,
       true, "Custom Market: 1xES Mar14@front:-1xJun14@"},
  };
  for (const LegListCase& c : cases) {
    FormatContractConfig config = DefaultFormatContractConfig;
    config.compact = c.compact;
    config.showRatioSign = c.showRatioSign;
    std::string out = "stale";
    EXPECT_TRUE(Formatter().FormatLegList(c.list, out, config)) << c.what;
    EXPECT_EQ(out, c.expected) << c.what;
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

struct EquivalenceCase {
  const char* what;
  LegList a;
  LegList b;
  bool relaxed;
  bool expected;
};

TEST_F(LegNamingTest, EquivalentLegLists) {
  SeriesID onPlain = SampleSeries(kCmeA, "ESH4");
  onPlain.product.exchange = 10;
  const EquivalenceCase cases[] = {
      {"empty lists", MakeList(516, {}), MakeList(516, {}), false, true},
      {"order does not matter",
       MakeList(516, {MakeLeg("ESH4", 1), MakeLeg("ESM4", -1)}),
       MakeList(516, {MakeLeg("ESM4", -1), MakeLeg("ESH4", 1)}), false, true},
      {"across flavours", MakeList(516, {MakeLeg("ESH4", 1)}),
       MakeList(516, {MakeLeg(onPlain, 1)}), false, true},
      {"ratio differs", MakeList(516, {MakeLeg("ESH4", 1)}),
       MakeList(516, {MakeLeg("ESH4", 2)}), false, false},
      {"count differs", MakeList(516, {MakeLeg("ESH4", 1)}),
       MakeList(516, {MakeLeg("ESH4", 1), MakeLeg("ESH4", 1)}), false, false},
      {"duplicates are not tracked",
       MakeList(516, {MakeLeg("ESH4", 1), MakeLeg("ESH4", 1)}),
       MakeList(516, {MakeLeg("ESH4", 1), MakeLeg("ESM4", 1)}), false, true},
      {"combo against butterfly, relaxed",
       MakeList(508, {MakeLeg("ESH4", 1), MakeLeg("ESM4", -1)}),
       MakeList(518, {MakeLeg("ESH4", 1), MakeLeg("ESM4", -1)}), true, true},
      {"combo against butterfly, strict",
       MakeList(508, {MakeLeg("ESH4", 1), MakeLeg("ESM4", -1)}),
       MakeList(518, {MakeLeg("ESH4", 1), MakeLeg("ESM4", -1)}), false, false},
      {"relaxed needs a loose code on one side",
       MakeList(516, {MakeLeg("ESH4", 1)}), MakeList(518, {MakeLeg("ESH4", 1)}),
       true, false},
      {"custom market prices in the same order",
       MakeList(552, {MakeLeg("ESH4", 1, "1"), MakeLeg("ESM4", -1, "2")}),
       MakeList(552, {MakeLeg("ESH4", 1, "1"), MakeLeg("ESM4", -1, "2")}),
       false, true},
      // The price is compared with the b leg at the a leg's index.
      {"custom market prices in another order",
       MakeList(552, {MakeLeg("ESH4", 1, "1"), MakeLeg("ESM4", -1, "2")}),
       MakeList(552, {MakeLeg("ESM4", -1, "2"), MakeLeg("ESH4", 1, "1")}),
       false, false},
      {"custom market price missing", MakeList(552, {MakeLeg("ESH4", 1)}),
       MakeList(552, {MakeLeg("ESH4", 1)}), false, false},
  };
  for (const EquivalenceCase& c : cases) {
    EXPECT_EQ(SeriesNameFormatter::EquivalentLegLists(c.a, c.b, c.relaxed),
              c.expected)
        << c.what;
  }
  // The overloads over full lists agree.
  FullLegList fa, fb;
  fa = cases[1].a;
  fb = cases[1].b;
  EXPECT_TRUE(SeriesNameFormatter::EquivalentLegLists(fa, cases[1].b, false));
  EXPECT_TRUE(SeriesNameFormatter::EquivalentLegLists(cases[1].a, fb, false));
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
