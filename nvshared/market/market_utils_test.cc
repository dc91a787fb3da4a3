#include "nvshared/market/market_utils.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <latch>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/defaults/criteria_key.h"
#include "nvshared/market/core_product_id.h"
#include "nvshared/market/exchange_names.h"
#include "nvshared/market/internal/market_utils_internal.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/testing/reference_fixture.h"

namespace nv_ns {
namespace {

using dv_core_ns::Date;
using dv_core_ns::Time;
using nv_fmt::GetExchangeID;
using nv_fmt::GetExchangeName;

class MarketUtilsTest : public ::testing::Test {
 protected:
  void SetUp() override { nvshared::testing::InstallTestReferenceData(); }
};

// Exchange, market and kind: Synthetic, Fix, Ecbot or none. Exchange 0 is
// Legwise (84) by rule, though the core says 31; 3 is eCBOT-A on CBOT, 4
// "ecbot" (the name compares with case) and 5 "eCBOT" off CBOT; 12, 98 and
// 173 are FIX by number alone; 180 is EnumMax() itself.
TEST_F(MarketUtilsTest, MarketAndKindOfExchange) {
  struct Case {
    int exchange, market;
    char kind;
  };
  const Case cases[] = {
      {0, 84, 'S'},  {3, 6, 'E'},    {4, 6, '-'},    {5, 32, '-'},
      {7, 7, '-'},   {2, 6, '-'},    {30, 3, '-'},   {9, 34, 'F'},
      {20, 85, 'S'}, {21, 88, 'S'},  {22, 84, 'S'},  {12, -1, 'F'},
      {98, -1, 'F'}, {173, -1, 'F'}, {174, -1, '-'}, {11, -1, '-'},
      {-1, -1, '-'}, {179, -1, '-'}, {180, -1, '-'}, {100000, -1, '-'}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.exchange);
    EXPECT_EQ(MarketUtils::GetMarketFromExchange(c.exchange), c.market);
    // Twice: the second answer comes from the cache.
    EXPECT_EQ(MarketUtils::GetMarketFromExchange(c.exchange), c.market);
    EXPECT_EQ(CNVConsumer::GetMarketFromExch(c.exchange), c.market);
    EXPECT_EQ(MarketUtils::IsSyntheticMarket(c.exchange), c.kind == 'S');
    EXPECT_EQ(MarketUtils::IsFIXExchangeID(c.exchange), c.kind == 'F');
    EXPECT_EQ(MarketUtils::IsECBOTExchangeID(c.exchange), c.kind == 'E');
  }
}

TEST_F(MarketUtilsTest, NamesTheirCachesAndIds) {
  const std::string& cme = MarketUtilsInternal::ExchangeName(7);
  EXPECT_EQ(&cme, &MarketUtilsInternal::ExchangeName(7));
  EXPECT_EQ(MarketUtilsInternal::MarketName(6), "CBOT");
  EXPECT_EQ(MarketUtilsInternal::MarketName(-1), "DV_INVALID_MARKET_ID");
  EXPECT_EQ(MarketUtilsInternal::MarketName(105), "");

  EXPECT_STREQ(GetExchangeName(7, false), "CME-A");
  EXPECT_STREQ(GetExchangeName(7, true), "CME-A (Globex)");
  EXPECT_EQ(GetExchangeName(7, true), GetExchangeName(7, true));
  // Without an alias both forms are the one cached text; unknown ids give
  // "", never null.
  EXPECT_EQ(GetExchangeName(8, true), GetExchangeName(8, false));
  for (int id : {11, -1, 180}) EXPECT_STREQ(GetExchangeName(id, true), "");

  dv_core_ns::SeriesID series;
  series.product = dv_core_ns::ProdID(7, dv_core_ns::FUTURE, "ES");
  std::string out = "stale";
  EXPECT_TRUE(nv_fmt::FormatExchange(series, out));
  EXPECT_EQ(out, "CME-A (Globex)");
  series.product.exchange = 11;
  EXPECT_FALSE(nv_fmt::FormatExchange(series, out));
  EXPECT_EQ(out, "");

  // The flavoured name of exchange 30 is made nowhere else, so its id is
  // known only after this.
  EXPECT_EQ(GetExchangeID("LIFFE (London)", true), -1);
  EXPECT_STREQ(GetExchangeName(30, true), "LIFFE (London)");
  EXPECT_EQ(GetExchangeID("LIFFE (London)", true), 30);
  EXPECT_EQ(GetExchangeID("LIFFE (London)", false), -1);
  // The flavoured path finds plain names too.
  EXPECT_EQ(GetExchangeID("LIFFE", true), 30);
  EXPECT_EQ(GetExchangeID(nullptr, true), -1);
}

// Month-and-year dates (day 0) are refused; times are not range-checked
// beyond the sign, and print modulo 100 (milliseconds modulo 1000).
TEST(FormatTest, DatesTimesAndAddresses) {
  const std::pair<Date, const char*> dates[] = {
      {{5, 3, 2014}, "05Mar14"}, {{31, 12, 1999}, "31Dec99"},
      {{1, 1, 2100}, "01Jan00"}, {{1, 1, 7}, "01Jan07"},
      {{0, 3, 2014}, ""},        {{5, 0, 2014}, ""},
      {{5, 13, 2014}, ""},       {{5, 3, 0}, ""},
      {{-1, 3, 2014}, ""}};
  for (const auto& [date, text] : dates) {
    SCOPED_TRACE(text);
    char buffer[8];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(nv_fmt::FormatDate(date, buffer), *text != '\0');
    EXPECT_STREQ(buffer, text);
  }
  EXPECT_FALSE(nv_fmt::FormatDate(Date(5, 3, 2014), nullptr));

  const std::pair<Time, const char*> times[] = {
      {{9, 5, 7, 42}, "09:05:07.042"},
      {{23, 59, 59, 999}, "23:59:59.999"},
      {{0, 0, 0, 1234}, "00:00:00.234"},
      {{123, 99, 60, 0}, "23:99:60.000"},
      {{-1, 0, 0, 0}, ""},
      {{0, 0, 0, -5}, ""}};
  for (const auto& [time, text] : times) {
    SCOPED_TRACE(text);
    char buffer[13];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(nv_fmt::FormatTime(time, buffer), *text != '\0');
    EXPECT_STREQ(buffer, text);
  }

  // Network order: the octets stand in memory in the order printed.
  const unsigned char octets[4] = {192, 168, 1, 250};
  int address = 0;
  std::memcpy(&address, octets, sizeof address);
  std::string out = "stale";
  EXPECT_TRUE(nv_fmt::FormatIP(address, out));
  EXPECT_EQ(out, "192.168.1.250");
}

TEST_F(MarketUtilsTest, CoreProductIdAsksTheCoreDirectly) {
  const dv_core_ns::ProdID dv(0, dv_core_ns::FUTURE, "X");
  EXPECT_EQ(CoreProductID(dv).GetMarketType(), 31);  // past the 84 rule
  const dv_core_ns::ProdID es(7, dv_core_ns::FUTURE, "ES");
  EXPECT_STREQ(CoreProductID(es).GetCurrencyCode(), "USD");
  EXPECT_EQ(CoreProductID(dv).GetCurrencyCode(), nullptr);
}

TEST_F(MarketUtilsTest, ShutdownStopsNewInstances) {
  EXPECT_EXIT(
      {
        MarketUtils::OnLibraryShutdown();
        const bool ok = MarketUtils::Instance() == nullptr &&
                        *GetExchangeName(8, false) == '\0';
        std::exit(ok ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
  EXPECT_NE(MarketUtils::Instance(), nullptr);
}

// The keys' own exchange-to-market cache, which keys reach when they match.
struct KeyMarkets : CriteriaKey {
  using CriteriaKey::GetMarketIdFromExch;
};

// Threads started together fill every cache at once from cold: the market
// vector, the exchange and market name maps, the flavoured names and the
// keys' exchange-to-market map. Each answer must equal the one worked out
// first on one thread from the core, past the caches, and the fixture's
// aliases; and every thread must be handed the same stored texts for an id
// on every pass, since those pointers are kept for good.
TEST_F(MarketUtilsTest, ConcurrencyCachesFillFromManyThreadsAtOnce) {
  constexpr int kFirst = -3, kIds = 187, kThreads = 6, kPasses = 12;
  const auto describe = [](const auto&... parts) {
    std::ostringstream out;
    ((out << parts << '|'), ...);
    return out.str();
  };
  const std::map<int, std::string> aliases = {{3, "eCBOT-A (Electronic)"},
                                              {7, "CME-A (Globex)"},
                                              {30, "LIFFE (London)"}};
  std::vector<std::string> expected;
  for (int id = kFirst; id < kFirst + kIds; ++id) {
    using dv_core_ns::CDVConsumer;
    // Exchange 0 counts as Legwise (84), whatever the core says.
    const int market = id == 0 ? 84 : CDVConsumer::GetMarketFromExch(id);
    const char* name = CDVConsumer::GetExchangeName(id);
    const std::string plain = name != nullptr ? name : "";
    const auto alias = aliases.find(id);
    expected.push_back(describe(market, market, plain.empty() ? -1 : id, plain,
                                alias != aliases.end() ? alias->second : plain,
                                CDVConsumer::GetMarketName(id),
                                market == 84 || market == 85 || market == 88,
                                id == 3));
  }

  using Texts = std::array<const void*, 3>;
  std::vector<std::vector<std::string>> answers(kThreads,
                                                std::vector<std::string>(kIds));
  std::vector<std::vector<Texts>> texts(kThreads, std::vector<Texts>(kIds));
  std::atomic<int> moved{0};
  std::latch go(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      go.arrive_and_wait();
      for (int pass = 0; pass < kPasses; ++pass) {
        for (int step = 0; step < kIds; ++step) {
          // All meet at each id on the first pass, from the first with an
          // alias (3), so that they fill its entries together; later passes
          // go each their own way.
          const int i = (step + 6 + pass * t * 31) % kIds;
          const int id = kFirst + i;
          const char* plain = GetExchangeName(id, false);
          const char* flavoured = GetExchangeName(id, true);
          const std::string& marketName = MarketUtilsInternal::MarketName(id);
          answers[t][i] = describe(
              MarketUtils::GetMarketFromExchange(id),
              KeyMarkets::GetMarketIdFromExch(id),
              *plain == '\0' ? -1 : GetExchangeID(flavoured, true), plain,
              flavoured, marketName, MarketUtils::IsSyntheticMarket(id),
              MarketUtils::IsECBOTExchangeID(id));
          const Texts kept = {plain, flavoured, &marketName};
          moved += pass > 0 && texts[t][i] != kept;
          texts[t][i] = kept;
        }
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(moved.load(), 0);
  for (int t = 0; t < kThreads; ++t) {
    EXPECT_EQ(answers[t], expected) << "thread " << t;
    EXPECT_EQ(texts[t], texts[0]) << "thread " << t;
  }
}

}  // namespace
}  // namespace nv_ns
