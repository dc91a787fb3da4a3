#include "nvshared/market/exchange_names.h"

#include <cstring>

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include "nvshared/testing/reference_fixture.h"

namespace nv_fmt {
namespace {

using dv_core_ns::Date;
using dv_core_ns::Time;

class ExchangeNamesTest : public ::testing::Test {
 protected:
  void SetUp() override { nvshared::testing::InstallTestReferenceData(); }
};

TEST_F(ExchangeNamesTest, FlavouredAndPlainNames) {
  EXPECT_STREQ(GetExchangeName(7, false), "CME-A");
  EXPECT_STREQ(GetExchangeName(7, true), "CME-A (Globex)");
  EXPECT_EQ(GetExchangeName(7, true), GetExchangeName(7, true));
  // Without an alias both forms are the one cached text.
  EXPECT_EQ(GetExchangeName(8, true), GetExchangeName(8, false));
  EXPECT_STREQ(GetExchangeName(8, true), "CME-B");
  // Unknown ids give "", never null.
  for (int id : {11, -1, 180, 5000}) {
    SCOPED_TRACE(id);
    ASSERT_NE(GetExchangeName(id, true), nullptr);
    EXPECT_STREQ(GetExchangeName(id, true), "");
  }
}

TEST_F(ExchangeNamesTest, FlavouredIdIsKnownOnlyAfterTheNameWasMade) {
  // Exchange 30 is used by no other test, so its flavoured name is unmade.
  EXPECT_EQ(GetExchangeID("LIFFE (London)", true), -1);
  EXPECT_STREQ(GetExchangeName(30, true), "LIFFE (London)");
  EXPECT_EQ(GetExchangeID("LIFFE (London)", true), 30);
  EXPECT_EQ(GetExchangeID("LIFFE (London)", false), -1);
  // Plain names work on both paths; a market's name finds its plain
  // exchange.
  EXPECT_EQ(GetExchangeID("LIFFE", true), 30);
  EXPECT_EQ(GetExchangeID("CME", false), 10);
  EXPECT_EQ(GetExchangeID("cme", false), -1);
  EXPECT_EQ(GetExchangeID(nullptr, true), -1);
}

TEST(FormatDateTest, Forms) {
  struct Case {
    Date date;
    bool ok;
    const char* text;
  };
  const Case cases[] = {
      {{5, 3, 2014}, true, "05Mar14"}, {{31, 12, 1999}, true, "31Dec99"},
      {{1, 1, 2100}, true, "01Jan00"}, {{1, 1, 7}, true, "01Jan07"},
      {{0, 3, 2014}, false, ""},  // month-and-year dates are refused
      {{5, 0, 2014}, false, ""},       {{5, 13, 2014}, false, ""},
      {{5, 3, 0}, false, ""},          {{-1, 3, 2014}, false, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    char buffer[8];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(FormatDate(c.date, buffer), c.ok);
    EXPECT_STREQ(buffer, c.text);
  }
  EXPECT_FALSE(FormatDate(Date(5, 3, 2014), nullptr));
}

TEST(FormatTimeTest, Forms) {
  struct Case {
    Time time;
    bool ok;
    const char* text;
  };
  const Case cases[] = {
      {{9, 5, 7, 42}, true, "09:05:07.042"},
      {{23, 59, 59, 999}, true, "23:59:59.999"},
      {{0, 0, 0, 1234}, true, "00:00:00.234"},   // modulo 1000
      {{123, 99, 60, 0}, true, "23:99:60.000"},  // no range check past that
      {{-1, 0, 0, 0}, false, ""},
      {{0, 0, 0, -5}, false, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    char buffer[13];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(FormatTime(c.time, buffer), c.ok);
    EXPECT_STREQ(buffer, c.text);
  }
}

TEST(FormatIPTest, NetworkOrder) {
  for (const char* text : {"192.168.1.10", "0.0.0.0", "255.255.255.255",
                           "10.0.0.1", "127.0.0.1"}) {
    SCOPED_TRACE(text);
    in_addr address{};
    ASSERT_EQ(inet_pton(AF_INET, text, &address), 1);
    int value = 0;
    std::memcpy(&value, &address.s_addr, sizeof value);
    std::string out = "stale";
    EXPECT_TRUE(FormatIP(value, out));
    EXPECT_EQ(out, text);
  }
}

TEST_F(ExchangeNamesTest, FormatExchangeUsesTheFlavouredName) {
  dv_core_ns::SeriesID series;
  series.product = dv_core_ns::ProdID(7, dv_core_ns::FUTURE, "ES");
  std::string out = "stale";
  EXPECT_TRUE(FormatExchange(series, out));
  EXPECT_EQ(out, "CME-A (Globex)");
  series.product.exchange = 11;
  EXPECT_FALSE(FormatExchange(series, out));
  EXPECT_EQ(out, "");
}

}  // namespace
}  // namespace nv_fmt
