// The converters and the factory: the selection table, the simple yields
// with their 5e-9 and 360/365 constants, par rates, and yield to maturity
// through the calculator.
#include "nvshared/udp/udp_price.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace {

using nv_ns::UDPDateTime;

UDPDateTime Day(int y, int m, int d) { return UDPDateTime(y, m, d, 0, 0, 0); }

struct Released {
  void operator()(CUDPrice* p) const { CUDPriceFactory::ReleaseUDPrice(p); }
};
using Converter = std::unique_ptr<CUDPrice, Released>;

TEST(UDPriceFactoryTest, SelectionTable) {
  struct Case {
    int type;
    const char* made;  // class name, or "" for null
  };
  const Case cases[] = {
      {1, ""}, {2, "yield"}, {3, "ytm"}, {4, ""},  // no plug-in knows the model
      {5, ""}, {6, "par"},   {0, ""},    {7, ""}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.type);
    CUDPData d;
    d.m_UDPriceType = c.type;
    d.m_sCustomPriceModelName = "Net Carry";
    EXPECT_EQ(CUDPriceFactory::GetUDPrice(&d), nullptr);  // column off
    d.m_bEnableUDP = 1;
    Converter p(CUDPriceFactory::GetUDPrice(&d));
    const std::string made = dynamic_cast<CUDPriceYield*>(p.get()) ? "yield"
                             : dynamic_cast<CUDPYield2Maturity*>(p.get())
                                 ? "ytm"
                             : dynamic_cast<CUDPriceParRate*>(p.get()) ? "par"
                             : p                                       ? "other"
                                                                       : "";
    EXPECT_EQ(made, c.made);
    if (p) {
      EXPECT_EQ(p->GetPricingType(), c.type);
      EXPECT_EQ(p->GetYieldType(), 2);
    }
  }
  EXPECT_EQ(CUDPriceFactory::GetUDPrice(nullptr), nullptr);
  CUDPrice* none = nullptr;
  CUDPriceFactory::ReleaseUDPrice(none);
  EXPECT_EQ(none, nullptr);
  CUDPData d;
  CUDPrice* one = new CUDPriceDefault(&d);
  CUDPriceFactory::ReleaseUDPrice(one);
  EXPECT_EQ(one, nullptr);
}

TEST(UDPriceYieldTest, BothDirectionsByYieldType) {
  struct Case {
    int yieldType;
    bool to365;
    double strip;
    double udp;
    double price;  // from udp
    double back;   // udp from that price
  };
  // Worked by hand from the conversion table.
  const Case cases[] = {
      {1, false, 0.0, 97.5, 97.5, 97.5},
      {2, false, 0.0, 4.0, 96.0, 4.0},
      {3, false, 0.0, 1.25, 9875.000000005, 1.25 + 5e-9 - 5e-11},
      {4, false, 25.0, 1.25, 9850.000000005, 1.25 + 5e-9 - 5e-11},
      {5, false, 0.0, 2.5, 97500.0, 2.5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.yieldType);
    CUDPData d;
    d.m_YieldType = c.yieldType;
    d.m_dStripBase = c.strip;
    CUDPriceYield y(&d);
    double price = -1.0, back = -1.0;
    ASSERT_TRUE(y.GetPriceFromUDP(c.udp, price));
    EXPECT_DOUBLE_EQ(price, c.price);
    ASSERT_TRUE(y.GetUDPFromPrice(price, back));
    EXPECT_NEAR(back, c.back, 1e-11);
  }
}

TEST(UDPriceYieldTest, DayBasisConversionAndKeptQuirks) {
  CUDPData d;
  d.m_YieldType = 2;
  d.m_bConvertTo365 = 1;
  CUDPriceYield y(&d);
  double udp = 0.0;
  // (4 x 365/2880 + 1) x 365/360 x 4, by hand.
  ASSERT_TRUE(y.GetUDPFromPrice(96.0, udp));
  EXPECT_DOUBLE_EQ(udp, 6.111496913580247);
  // Convert365To360(0) = 0, so a zero yield is a price of 100.
  double price = 0.0;
  ASSERT_TRUE(y.GetPriceFromUDP(0.0, price));
  EXPECT_EQ(price, 100.0);
  // Back through (sqrt(x / 2 + 1) - 1) x 1440/365: 4 again, up to rounding.
  ASSERT_TRUE(y.GetPriceFromUDP(6.111496913580247, price));
  EXPECT_NEAR(price, 96.0, 1e-12);

  // A yield type outside 1..5: false both ways; the reverse direction still
  // converts whatever the output held.
  d.m_YieldType = 9;
  price = 12.0;
  EXPECT_FALSE(y.GetPriceFromUDP(4.0, price));
  EXPECT_EQ(price, 12.0);
  udp = 4.0;
  EXPECT_FALSE(y.GetUDPFromPrice(96.0, udp));
  EXPECT_DOUBLE_EQ(udp, 6.111496913580247);
  d.m_bConvertTo365 = 0;
  udp = 4.0;
  EXPECT_FALSE(y.GetUDPFromPrice(96.0, udp));
  EXPECT_EQ(udp, 4.0);
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
  udp = 7.0;
  EXPECT_FALSE(p.GetUDPFromPrice(100.0, udp));
  EXPECT_EQ(udp, 7.0);
}

TEST(UDPriceDefaultTest, Identity) {
  CUDPData d;
  CUDPriceDefault p(&d);
  double out = 0.0;
  EXPECT_TRUE(p.GetPriceFromUDP(101.25, out));
  EXPECT_EQ(out, 101.25);
  EXPECT_TRUE(p.GetUDPFromPrice(-3.5, out));
  EXPECT_EQ(out, -3.5);
}

TEST(UDPYield2MaturityTest, ParBondAndNewProperties) {
  // On a coupon date a bond priced at par yields its coupon: 6% semiannual.
  CUDPData d;
  d.m_bEnableUDP = 1;
  d.m_UDPriceType = 3;
  d.SetSettlementDate(Day(2030, 2, 15), false);
  d.SetMaturityDate(Day(2035, 2, 15), false);
  d.m_dCoupon = 6.0;
  d.m_bConvertTo365 = 1;  // ignored: the calculator has its day count
  Converter p(CUDPriceFactory::GetUDPrice(&d));
  ASSERT_NE(p, nullptr);
  double yield = 0.0, price = 0.0;
  ASSERT_TRUE(p->GetUDPFromPrice(100.0, yield));
  EXPECT_NEAR(yield, 6.0, 1e-9);
  ASSERT_TRUE(p->GetPriceFromUDP(6.0, price));
  EXPECT_NEAR(price, 100.0, 1e-9);

  // Through a conversion factor of 0.8 the futures price is 125.
  d.m_dConvFactor = 0.8;
  d.m_dCoupon = 8.0;
  ASSERT_TRUE(p->ApplyNewProperties(&d));
  ASSERT_TRUE(p->GetPriceFromUDP(8.0, price));
  EXPECT_NEAR(price, 125.0, 1e-9);
  // Terms the calculator refuses: false from ApplyNewProperties.
  d.m_dConvFactor = 5.0;
  EXPECT_FALSE(p->ApplyNewProperties(&d));
}

}  // namespace
