// The converters and the factory: the selection table, the simple yields
// with their 5e-9 and 360/365 constants, par rates, and yield to maturity
// through the calculator.
#include "nvshared/udp/udp_price.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace {

using nv_ns::UDPDateTime;

struct Released {
  void operator()(CUDPrice* p) const { CUDPriceFactory::ReleaseUDPrice(p); }
};
using Converter = std::unique_ptr<CUDPrice, Released>;

TEST(UDPriceFactoryTest, SelectionTable) {
  // Type 4 gives null while no plug-in knows the model.
  const char* made[] = {"", "", "yield", "ytm", "", "", "par", ""};
  for (int type = 0; type <= 7; ++type) {
    SCOPED_TRACE(type);
    CUDPData d;
    d.m_UDPriceType = type;
    d.m_sCustomPriceModelName = "Net Carry";
    EXPECT_EQ(CUDPriceFactory::GetUDPrice(&d), nullptr);  // column off
    d.m_bEnableUDP = 1;
    Converter p(CUDPriceFactory::GetUDPrice(&d));
    EXPECT_EQ(dynamic_cast<CUDPriceYield*>(p.get())        ? "yield"
              : dynamic_cast<CUDPYield2Maturity*>(p.get()) ? "ytm"
              : dynamic_cast<CUDPriceParRate*>(p.get())    ? "par"
                                                           : std::string(),
              made[type]);
    EXPECT_EQ(p ? p->GetPricingType() : type, type);
  }
}

TEST(UDPriceYieldTest, BothDirectionsByYieldType) {
  struct Case {
    int yieldType;
    double udp;
    double price;  // from udp, by hand from the conversion table
  };
  const Case cases[] = {{1, 97.5, 97.5},
                        {2, 4.0, 96.0},
                        {3, 1.25, 9875.000000005},
                        {4, 1.25, 9850.000000005},  // strip base 25
                        {5, 2.5, 97500.0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.yieldType);
    CUDPData d;
    d.m_YieldType = c.yieldType;
    d.m_dStripBase = 25.0;
    CUDPriceYield y(&d);
    double price = -1.0, back = -1.0;
    ASSERT_TRUE(y.GetPriceFromUDP(c.udp, price));
    EXPECT_DOUBLE_EQ(price, c.price);
    ASSERT_TRUE(y.GetUDPFromPrice(price, back));
    // Types 3 and 4 add 5e-9 both ways, which leaves the two apart.
    const bool skewed = c.yieldType == 3 || c.yieldType == 4;
    EXPECT_NEAR(back, c.udp + (skewed ? 5e-9 - 5e-11 : 0.0), 1e-11);
  }
}

TEST(UDPriceYieldTest, DayBasisConversionAndKeptQuirks) {
  CUDPData d;
  d.m_bConvertTo365 = 1;
  CUDPriceYield y(&d);
  double udp = 0.0, price = 0.0;
  // (4 x 365/2880 + 1) x 365/360 x 4, by hand.
  ASSERT_TRUE(y.GetUDPFromPrice(96.0, udp));
  EXPECT_DOUBLE_EQ(udp, 6.111496913580247);
  // Back through (sqrt(x / 2 + 1) - 1) x 1440/365; 0 stays 0.
  ASSERT_TRUE(y.GetPriceFromUDP(udp, price));
  EXPECT_NEAR(price, 96.0, 1e-12);
  ASSERT_TRUE(y.GetPriceFromUDP(0.0, price));
  EXPECT_EQ(price, 100.0);

  // A yield type outside 1..5: false both ways, yet the reverse direction
  // still converts whatever the output held.
  d.m_YieldType = 9;
  price = 12.0;
  EXPECT_FALSE(y.GetPriceFromUDP(4.0, price));
  EXPECT_EQ(price, 12.0);
  udp = 4.0;
  EXPECT_FALSE(y.GetUDPFromPrice(96.0, udp));
  EXPECT_DOUBLE_EQ(udp, 6.111496913580247);
}

TEST(UDPriceParRateTest, BothDirectionsAndZeroPV01) {
  CUDPData d;
  d.m_dCoupon = 5.0;
  d.m_dPV01 = 2.0;
  CUDPriceParRate p(&d);
  double price = 0.0, udp = 0.0;
  ASSERT_TRUE(p.GetPriceFromUDP(6.0, price));
  EXPECT_EQ(price, 200.0);
  ASSERT_TRUE(p.GetUDPFromPrice(-50.0, udp));
  EXPECT_EQ(udp, 4.75);
  d.m_dPV01 = 0.0;
  ASSERT_TRUE(p.GetPriceFromUDP(6.0, price));
  EXPECT_EQ(price, 0.0);
  EXPECT_FALSE(p.GetUDPFromPrice(100.0, udp));
  EXPECT_EQ(udp, 4.75);
}

TEST(UDPYield2MaturityTest, ParBondAndNewProperties) {
  // On a coupon date a bond priced at par yields its coupon.
  CUDPData d;
  d.m_bEnableUDP = 1;
  d.m_UDPriceType = 3;
  d.SetSettlementDate(UDPDateTime(2030, 2, 15, 0, 0, 0), false);
  d.SetMaturityDate(UDPDateTime(2035, 2, 15, 0, 0, 0), false);
  d.m_dCoupon = 6.0;
  d.m_bConvertTo365 = 1;  // ignored: the calculator has its day count
  Converter p(CUDPriceFactory::GetUDPrice(&d));
  double yield = 0.0, price = 0.0;
  ASSERT_TRUE(p->GetUDPFromPrice(100.0, yield));
  EXPECT_NEAR(yield, 6.0, 1e-9);
  // New terms: through a conversion factor of 0.8 the futures price is 125.
  d.m_dConvFactor = 0.8;
  d.m_dCoupon = 8.0;
  ASSERT_TRUE(p->ApplyNewProperties(&d));
  ASSERT_TRUE(p->GetPriceFromUDP(8.0, price));
  EXPECT_NEAR(price, 125.0, 1e-9);
  d.m_dConvFactor = 5.0;  // refused by the calculator
  EXPECT_FALSE(p->ApplyNewProperties(&d));
}

}  // namespace
