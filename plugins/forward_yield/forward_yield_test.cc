#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/testing/price_model_config.h"
#include "nvshared/testing/report_capture.h"
#include "nvshared/udp/custom_price_model.h"

namespace {

using nvshared::testing::KeyValues;

// The example model loaded as a host loads it, from a configuration
// directory of its own.
class ForwardYieldTest : public ::testing::Test {
 protected:
  ForwardYieldTest() {
    config_.Install(NVSHARED_FORWARD_YIELD_PLUGIN, "forward_yield.so");
    manager_ = &config_.Load();
  }
  nvshared::testing::PriceModelConfig config_;
  nvshared::testing::ReportCapture capture_;
  CCustomPriceModelManager* manager_ = nullptr;
};

// Golden prices: the textbook sum of discounted coupons less accrued
// interest, worked apart from this code.
TEST_F(ForwardYieldTest, ConvertsBothWays) {
  std::vector<std::string> names;
  manager_->GetCustomPriceModelNames(names);
  ASSERT_EQ(names, std::vector<std::string>{"Forward Yield"});
  struct Case {
    const char* delivery;
    const char* factor;
    double yield, futures;
  } const cases[] = {
      // 20 whole periods, no accrued: at the coupon rate the bond is at par.
      {"12/15/2026", "0.8", 6.0, 125.0},
      {"12/15/2026", "0.8", 5.0, 134.7432264285},
      // Between coupons: 92 of 182 days left in the period.
      {"2027-03-15", "0.9", 5.5, 115.2503071657},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.delivery + std::string(" ") + std::to_string(c.yield));
    CUDPData data;
    data.m_UDPriceType = nv_ns::UDPPriceType::CustomModel;
    data.m_vectUDPKeyValue =
        KeyValues({std::string("Settlement Date=") + c.delivery,
                   "Maturity Date=12/15/2036", "Coupon=6",
                   std::string("Conversion Factor=") + c.factor});
    std::unique_ptr<CUDPrice> price(
        manager_->GetCustomPriceModel("Forward Yield"));
    ASSERT_TRUE(price != nullptr && price->ApplyNewProperties(&data));
    double futures = 0.0, yield = 0.0;
    EXPECT_TRUE(price->GetPriceFromUDP(c.yield, futures));
    EXPECT_NEAR(futures, c.futures, 1e-9);
    EXPECT_TRUE(price->GetUDPFromPrice(c.futures, yield));
    EXPECT_NEAR(yield, c.yield, 1e-9);
  }
  EXPECT_TRUE(capture_.Logged().empty());
}

TEST_F(ForwardYieldTest, ValidatesItsParameters) {
  std::vector<UDPKeyValue> params;
  ASSERT_TRUE(manager_->GetCustomPriceModelParams("Forward Yield", params));
  ASSERT_EQ(params.size(), 10u);
  struct Case {
    std::vector<std::string> params;
    const char* message;  // empty: accepted
  } const cases[] = {
      {{"Settlement Date=12/15/2026", "Maturity Date=12/15/2036"}, ""},
      {{"Coupon Frequency=Weekly"}, "Unknown coupon frequency 'Weekly'"},
      {{"Coupon=6%"}, "Coupon must be a number from 0 to 100"},
      {{"Conversion Factor=0"}, "Conversion factor must be a positive number"},
      {{"Settlement Date=2026-02-29"},
       "Settlement (delivery) date is missing or invalid"},
      {{"Settlement Date=2036-12-15", "Maturity Date=2036-12-15"},
       "Maturity must follow delivery"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    std::string message = "untouched";
    EXPECT_EQ(manager_->ValidateCustomPricingModelParams(
                  "Forward Yield", KeyValues(c.params), message),
              *c.message == '\0');
    EXPECT_EQ(message, c.message);
  }
}

}  // namespace
