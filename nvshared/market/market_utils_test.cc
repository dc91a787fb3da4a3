#include "nvshared/market/market_utils.h"

#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/market/core_product_id.h"
#include "nvshared/market/exchange_names.h"
#include "nvshared/market/internal/market_utils_internal.h"
#include "nvshared/platform/core/consumer.h"
#include "nvshared/testing/reference_fixture.h"

namespace nv_ns {
namespace {

class MarketUtilsTest : public ::testing::Test {
 protected:
  void SetUp() override { nvshared::testing::InstallTestReferenceData(); }
};

TEST_F(MarketUtilsTest, MarketFromExchange) {
  struct Case {
    int exchange;
    int market;
  };
  const Case cases[] = {
      {0, 84},  // DV counts as Legwise, whatever the core says (31)
      {7, 7},
      {2, 6},
      {30, 3},
      {20, 85},
      {11, -1},  // no such exchange
      {-1, -1},
      {179, -1},
      {nvshared::testing::kTestExchangeIdCount, -1},  // EnumMax() itself
      {100000, -1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.exchange);
    EXPECT_EQ(MarketUtils::GetMarketFromExchange(c.exchange), c.market);
    // Twice: the second answer comes from the cache.
    EXPECT_EQ(MarketUtils::GetMarketFromExchange(c.exchange), c.market);
    EXPECT_EQ(CNVConsumer::GetMarketFromExch(c.exchange), c.market);
  }
  EXPECT_EQ(dv_core_ns::CDVConsumer::GetMarketFromExch(0), 31);
}

TEST_F(MarketUtilsTest, Classifications) {
  struct Case {
    int exchange;
    bool synthetic, fix, ecbot;
  };
  const Case cases[] = {
      {0, true, false, false},  // exchange 0 is on Legwise by rule
      {1, false, false, false},   {2, false, false, false},  // CBOT-A
      {3, false, false, true},                               // eCBOT-A on CBOT
      {4, false, false, false},  // "ecbot": compared with case
      {5, false, false, false},  // "eCBOT" but not on CBOT
      {7, false, false, false},   {9, false, true, false},
      {12, false, true, false},  // FIX by number alone: no such exchange
      {20, true, false, false},   {21, true, false, false},
      {22, true, false, false},   {11, false, false, false},
      {98, false, true, false},   {173, false, true, false},
      {174, false, false, false}, {-1, false, false, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.exchange);
    EXPECT_EQ(MarketUtils::IsSyntheticMarket(c.exchange), c.synthetic);
    EXPECT_EQ(MarketUtils::IsFIXExchangeID(c.exchange), c.fix);
    EXPECT_EQ(MarketUtils::IsECBOTExchangeID(c.exchange), c.ecbot);
  }
}

TEST_F(MarketUtilsTest, NameCachesKeepTheirReferences) {
  const std::string& cme = MarketUtilsInternal::ExchangeName(7);
  EXPECT_EQ(cme, "CME-A");
  EXPECT_EQ(&cme, &MarketUtilsInternal::ExchangeName(7));
  EXPECT_EQ(MarketUtilsInternal::ExchangeName(11), "");
  EXPECT_EQ(MarketUtilsInternal::MarketName(6), "CBOT");
  EXPECT_EQ(MarketUtilsInternal::MarketName(-1), "DV_INVALID_MARKET_ID");
  EXPECT_EQ(MarketUtilsInternal::MarketName(105), "");
  EXPECT_EQ(MarketUtils::Instance(), MarketUtils::Instance());
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
                        *nv_fmt::GetExchangeName(8, false) == '\0';
        std::exit(ok ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
  EXPECT_NE(MarketUtils::Instance(), nullptr);
}

TEST_F(MarketUtilsTest, ConcurrencyCachesAgreeAcrossThreads) {
  constexpr int kThreads = 8;
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t, &wrong] {
      for (int i = 0; i < 2000; ++i) {
        const int id = (i * 7 + t) % 200 - 10;
        const int market = MarketUtils::GetMarketFromExchange(id);
        const int expected =
            id == 0 ? 84
            : (id < 0 || id >= 180)
                ? -1
                : dv_core_ns::CDVConsumer::GetMarketFromExch(id);
        if (market != expected) ++wrong;
        const char* flavoured = nv_fmt::GetExchangeName(7, true);
        if (std::string(flavoured) != "CME-A (Globex)") ++wrong;
        if (flavoured != nv_fmt::GetExchangeName(7, true)) ++wrong;
        if (nv_fmt::GetExchangeID("CME-A (Globex)", true) != 7) ++wrong;
        if (MarketUtilsInternal::MarketName(id % 105) !=
            dv_core_ns::CDVConsumer::GetMarketName(id % 105)) {
          ++wrong;
        }
        MarketUtils::IsECBOTExchangeID(3);
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(wrong.load(), 0);
}

}  // namespace
}  // namespace nv_ns
