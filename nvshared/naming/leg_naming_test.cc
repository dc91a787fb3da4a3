#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "nvshared/naming/series_name_formatter.h"
#include "nvshared/testing/sample_data.h"

namespace nv_fmt {
namespace {

using dv_core_ns::FullLegList;
using dv_core_ns::Leg;
using dv_core_ns::LegList;
using dv_core_ns::SeriesID;
using nvshared::testing::SampleSeries;

constexpr int kCmeA = 7;

SeriesNameFormatter& Formatter() { return SeriesNameFormatter::Instance(); }

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

class LegNamingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    nvshared::testing::InstallSampleReferenceData();
    Formatter().SetProductNameEnabled(true);
  }
  void TearDown() override { Formatter().SetProductNameEnabled(false); }
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
      {"signs on later legs",
       MakeList(516, {MakeLeg("ESH4", 1), MakeLeg("ESM4", 1)}), false, true,
       "Calendar: 1xES Mar14:+1xJun14"},
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
      {"spread type 539 prints no type",
       MakeList(539, {MakeLeg("ESH4", 1), MakeLeg("ESM4", -1)}), false, true,
       "1xES Mar14:-1xJun14"},
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
  SeriesID onB = es;
  onB.product.exchange = 8;
  EXPECT_TRUE(SeriesNameFormatter::EquivalentSeriesIDs(es, onB));
  EXPECT_FALSE(SeriesNameFormatter::EquivalentSeriesIDs(
      es, SampleSeries(kCmeA, "ESM4")));
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
  const EquivalenceCase& c = cases[1];
  FullLegList fa;
  FullLegList fb;
  fa = c.a;
  fb = c.b;
  EXPECT_TRUE(SeriesNameFormatter::EquivalentLegLists(fa, c.b, false));
  EXPECT_TRUE(SeriesNameFormatter::EquivalentLegLists(c.a, fb, false));
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
