#include "nvshared/defaults/default_key.h"

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/testing/reference_fixture.h"

namespace {

// Exchanges of the test reference data used here: 7 "CME-A (Globex)" of
// market 7, 1 "CBOT" and 3 "eCBOT-A (Electronic)" of market 6 (CBOT).
constexpr char kCmeA[] = "CME-A (Globex)";
constexpr char kECbotA[] = "eCBOT-A (Electronic)";

struct Entry {
  std::string templ = {};
  unsigned short broker = 0;
  std::optional<std::string> gateway = {};  // nullopt: wild
  int gm = -1;
  std::optional<std::string> products = {};  // nullopt: wild
  int type = 0;                              // 0: wild
  int market = -1;                           // -1: wild
  bool excluded = false;
  bool fallback = false;
};

// A host's table as the library sees it: a vector and a cursor.
class Table : public DefaultsEntryIterator {
 public:
  explicit Table(std::vector<Entry> entries) : entries_(std::move(entries)) {}

  bool HasEntry() const override { return pos_ < entries_.size(); }
  void Next() override { ++pos_; }
  void Reset() override {
    pos_ = 0;
    ++resets;
  }
  void SaveBest() override {
    best = static_cast<int>(pos_);
    ++saves;
  }
  void RestoreBest() override { pos_ = static_cast<std::size_t>(best); }
  const char* GetTemplateName() const override { return e().templ.c_str(); }
  unsigned short GetBrokerId() const override { return e().broker; }
  int GetHostValue() const override { return 0; }
  std::string GetGatewayName() const override {
    return e().gateway.value_or("");
  }
  int GetGMId() const override { return e().gm; }
  bool IsWildGateway() const override { return !e().gateway; }
  const char* GetProductNames() const override {
    return e().products ? e().products->c_str() : "";
  }
  bool IsWildProductName() const override { return !e().products; }
  nv_ns::ProductType::Value GetProductType() const override {
    return static_cast<nv_ns::ProductType::Value>(e().type);
  }
  bool IsWildProductType() const override { return e().type == 0; }
  nv_ns::MarketType::Value GetMarketId() const override {
    return static_cast<nv_ns::MarketType::Value>(e().market);
  }
  bool IsWildMarketId() const override { return e().market == -1; }
  bool IsExcluded() const override { return e().excluded; }
  bool IsFallback() const override { return e().fallback; }

  int best = -1;
  int saves = 0;
  int resets = 0;

 private:
  const Entry& e() const { return entries_[pos_]; }
  std::vector<Entry> entries_;
  std::size_t pos_ = 0;
};

// A key whose protected helpers the tests may call.
class Key : public CDefaultKey {
 public:
  using CDefaultKey::CDefaultKey;
  using CriteriaKey::GetMarketIdFromExch;
  using CriteriaKey::MatchProduct;
  using CriteriaKey::s_mapExchId2MktId;
};

Key MakeKey(int exchange = -1, int type = 0, const std::string& product = "",
            int market = -1, int gm = -1, const std::string& templ = "",
            unsigned short broker = 0) {
  return Key(CriteriaKeyParams(
      templ, broker, static_cast<nv_ns::MarketType::Value>(market),
      static_cast<nv_ns::ExchangeIds::Value>(exchange), gm,
      static_cast<nv_ns::ProductType::Value>(type), product));
}

// Index of the winner, or -1; `score` receives its score.
int Winner(const CDefaultKey& key, std::vector<Entry> entries,
           int* score = nullptr) {
  Table table(entries);
  const bool found = key.Match(table);
  Table again(std::move(entries));
  int s = -1;
  EXPECT_EQ(key.MatchScored(again, s), found);
  EXPECT_EQ(again.best, table.best);
  if (score != nullptr) *score = found ? s : -1;
  return found ? table.best : -1;
}

class DefaultKeyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    nvshared::testing::InstallTestReferenceData();
    CDefaultKey::m_bMultiBrokerMode = false;
  }
  void TearDown() override { CDefaultKey::m_bMultiBrokerMode = false; }
};

TEST_F(DefaultKeyTest, EmptyTableFindsNothingAndSavesNothing) {
  Table table({});
  EXPECT_FALSE(MakeKey(7, 1, "ES").Match(table));
  EXPECT_EQ(table.saves, 0);
}

TEST_F(DefaultKeyTest, EachWeightOutranksAllWeakerOnesTogether) {
  // The key names every field; the entry that names one field alone is
  // listed after an entry that names all weaker fields, and still wins.
  const Entry all_weaker[] = {
      // product beats gateway + market + type
      {.gateway = kCmeA, .type = 1, .market = 7},
      // gateway beats market + type
      {.type = 1, .market = 7},
      // market beats type
      {.type = 1},
  };
  const Entry one[] = {{.products = "ES"}, {.gateway = kCmeA}, {.market = 7}};
  const int expected_scores[] = {16 + 32 + 8, 16 + 32 + 4 + 2, 16 + 32 + 2};
  CDefaultKey::m_bMultiBrokerMode = true;
  const Key key = MakeKey(7, 1, "ES", -1, -1, "Std", 5);
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    Entry weaker = all_weaker[i];
    Entry single = one[i];
    weaker.templ = single.templ = "STD";  // template compares without case
    weaker.broker = single.broker = 5;
    int score = 0;
    EXPECT_EQ(Winner(key, {weaker, single}, &score), 1);
    EXPECT_EQ(score, expected_scores[i]);
  }
  int score = 0;
  EXPECT_EQ(Winner(key,
                   {{.templ = "std",
                     .broker = 5,
                     .gateway = kCmeA,
                     .products = "ES",
                     .type = 1,
                     .market = 7}},
                   &score),
            0);
  EXPECT_EQ(score, 63);
}

TEST_F(DefaultKeyTest, BrokerAndTemplateFilterWhenTheKeyNamesThem) {
  const std::vector<Entry> table = {{.templ = "A", .broker = 1},
                                    {.templ = "B", .broker = 2}};
  // Broker ids count only in multi-broker mode.
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "", 2), table), 0);
  CDefaultKey::m_bMultiBrokerMode = true;
  int score = 0;
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "", 2), table, &score), 1);
  EXPECT_EQ(score, 32);
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "b", 0), table, &score), 1);
  EXPECT_EQ(score, 16);
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "C", 0), table), -1);
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", -1, -1, "A", 2), table), -1);
}

TEST_F(DefaultKeyTest, WildFieldsNeitherExcludeNorScore) {
  int score = 0;
  // A wild key takes the first entry, however narrow the others are.
  EXPECT_EQ(
      Winner(MakeKey(),
             {{.gateway = "x", .products = "ZZ", .type = 3}, {.market = 99}},
             &score),
      0);
  EXPECT_EQ(score, 0);
  // Wild entries pass a key that names everything with score 0.
  EXPECT_EQ(Winner(MakeKey(7, 1, "ES"), {{}}, &score), 0);
  EXPECT_EQ(score, 0);
  // A named field that differs drops the entry.
  EXPECT_EQ(Winner(MakeKey(7, 1, "ES"), {{.type = 2}}), -1);
  EXPECT_EQ(Winner(MakeKey(7, 1, "ES"), {{.products = "NQ"}}), -1);
  EXPECT_EQ(Winner(MakeKey(7, 1, "ES"), {{.market = 6}}), -1);
  // The gateway compares against the flavoured name, byte for byte.
  EXPECT_EQ(Winner(MakeKey(7), {{.gateway = "CME-A"}}), -1);
  EXPECT_EQ(Winner(MakeKey(7), {{.gateway = "cme-a (globex)"}}), -1);
  // An entry naming a gateway but no market belongs to the gateway's market.
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", 7), {{.gateway = kCmeA}}, &score), 0);
  EXPECT_EQ(score, 2);
  EXPECT_EQ(Winner(MakeKey(-1, 0, "", 6), {{.gateway = kCmeA}}), -1);
}

TEST_F(DefaultKeyTest, ExcludedEntriesNeverWin) {
  EXPECT_EQ(Winner(MakeKey(7), {{.gateway = kCmeA, .excluded = true}}), -1);
  EXPECT_EQ(Winner(MakeKey(7), {{.gateway = kCmeA, .excluded = true}, {}}), 1);
}

TEST_F(DefaultKeyTest, FallbackGivesWayOnceToAnEqualNonFallback) {
  const Entry fb{.fallback = true};
  const Entry plain{};
  const Entry better{.market = 7};
  struct Case {
    std::vector<Entry> table;
    int winner;
  } cases[] = {
      {{fb, plain, plain}, 1},
      {{fb, fb, plain}, 2},
      {{fb, fb}, 0},
      {{plain, fb}, 0},
      // A higher score still wins, fallback or not.
      {{plain, {.market = 7, .fallback = true}}, 1},
      {{{.market = 7, .fallback = true}, plain}, 0},
      {{{.market = 7, .fallback = true}, better, better}, 1},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(Winner(MakeKey(7), cases[i].table), cases[i].winner);
  }
}

TEST_F(DefaultKeyTest, GmIdsNarrowTheGateway) {
  int score = 0;
  EXPECT_EQ(Winner(MakeKey(7, 0, "", -1, 3), {{.gateway = kCmeA}}, &score), 0);
  EXPECT_EQ(score, 4 + 2);
  EXPECT_EQ(Winner(MakeKey(7, 0, "", -1, 3), {{.gateway = kCmeA, .gm = 3}}), 0);
  EXPECT_EQ(Winner(MakeKey(7, 0, "", -1, 3), {{.gateway = kCmeA, .gm = 4}}),
            -1);
  EXPECT_EQ(Winner(MakeKey(7, 0, "", -1, -1), {{.gateway = kCmeA, .gm = 4}}),
            0);
}

TEST_F(DefaultKeyTest, NamedButEmptyGatewayIsDropped) {
  EXPECT_EQ(Winner(MakeKey(7), {{.gateway = ""}}), -1);
  // A wild key exchange skips the gateway test altogether.
  EXPECT_EQ(Winner(MakeKey(-1, 1), {{.gateway = ""}}), 0);
}

TEST_F(DefaultKeyTest, ECBOTKeyPrefersMarket200ThenCBOT) {
  const Key key = MakeKey(3);
  const Entry cbot{.market = 6};
  const Entry ecbot{.market = 200};
  const Entry wild{};
  EXPECT_EQ(Winner(key, {cbot, ecbot}), 1);
  EXPECT_EQ(Winner(key, {cbot}), 0);
  EXPECT_EQ(Winner(key, {wild}), 0);
  // The wild entry fits the first search with a market other than 200, so
  // the second search runs and returns it again.
  Table table({wild});
  EXPECT_TRUE(key.Match(table));
  EXPECT_EQ(table.resets, 2);
  // An exchange of CBOT whose name is not eCBOT searches once, for CBOT.
  Table plain({ecbot, cbot});
  EXPECT_TRUE(MakeKey(1).Match(plain));
  EXPECT_EQ(plain.best, 1);
  EXPECT_EQ(plain.resets, 1);
  // Nothing for either market: false after both searches.
  Table none(std::vector<Entry>{{.market = 7}});
  EXPECT_FALSE(key.Match(none));
  EXPECT_EQ(none.resets, 2);
}

TEST_F(DefaultKeyTest, LegwiseTypeLooksForTheLegwiseMarket) {
  // No market and no exchange: the target has no effect.
  EXPECT_EQ(Winner(MakeKey(-1, 32), {{.market = 7}}), 0);
  // With an exchange, entries are tested against market 84.
  EXPECT_EQ(Winner(MakeKey(7, 32), {{.market = 7}, {.market = 84}}), 1);
  EXPECT_EQ(Winner(MakeKey(7, 32), {{.market = 7}}), -1);
}

TEST_F(DefaultKeyTest, ProductListsIgnoreBlanksAndCase) {
  const struct {
    const char* list;
    const char* product;
    bool match;
  } cases[] = {
      {" zn ,\tZB ", "ZB", true}, {" zn , ZB ", "zn", true},
      {" zn , ZB ", "Z", false},  {",,,", "ZB", false},
      {"", "ZB", false},          {",, zb,", "ZB", true},
      {"Z B", "ZB", false},       {"   ", "ZB", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.list);
    EXPECT_EQ(MakeKey(-1, 0, c.product).MatchProduct(std::string(c.list)),
              c.match);
  }
  std::string longList(300, ',');
  longList += "ES";
  EXPECT_TRUE(MakeKey(-1, 0, "es").MatchProduct(longList));
  EXPECT_FALSE(MakeKey(-1, 0, "es").MatchProduct(nullptr));
}

TEST_F(DefaultKeyTest, SeriesParamsTakeTheProductAndAnOpenExchange) {
  dv_core_ns::SeriesID series;
  series.product = dv_core_ns::ProdID(7, 1, "ES");
  CriteriaKeyParams p("T", &series, 4, nv_ns::ExchangeIds::Invalid, 2);
  // No key: the series is ignored.
  EXPECT_EQ(p.m_exchangeId, -1);
  EXPECT_EQ(p.m_productName, "");
  series.SetSeriesKey("ESH4");
  p = CriteriaKeyParams("T", &series, 4, nv_ns::ExchangeIds::Invalid, 2);
  EXPECT_EQ(p.m_exchangeId, 7);
  EXPECT_EQ(p.m_productType, 1);
  EXPECT_EQ(p.m_productName, "ES");
  EXPECT_EQ(p.m_marketId, -1);
  EXPECT_EQ(p.m_gmId, 2);
  EXPECT_EQ(p.m_brokerId, 4);
  p = CriteriaKeyParams("T", &series, 4,
                        static_cast<nv_ns::ExchangeIds::Value>(8), 2);
  EXPECT_EQ(p.m_exchangeId, 8);
  EXPECT_EQ(p.m_productName, "ES");
}

TEST_F(DefaultKeyTest, MarketCacheKeepsUnknownExchangesToo) {
  EXPECT_EQ(Key::GetMarketIdFromExch(3), 6);
  EXPECT_EQ(Key::GetMarketIdFromExch(50), -1);
  EXPECT_EQ(Key::s_mapExchId2MktId().at(50), -1);
  EXPECT_EQ(Key::s_mapExchId2MktId().at(3), 6);
}

}  // namespace
