// CUDPData: defaults, the wire form (golden bytes built from the item
// tables), old codes, the settings store, property reports, ValidateData,
// comparisons, the setters and contract seeding.
#include "nvshared/udp/udp_data.h"

#include <cmath>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/testing/bond_terms.h"
#include "nvshared/testing/hex_bytes.h"

namespace {

using nv_ns::UDPDateTime;
using nvshared::testing::HexBytes;
using nvshared::testing::ToHex;
using nvshared::testing::Ymd;

std::string Today() {
  const UDPDateTime now = UDPDateTime::GetTickCount();
  return UDPDateTime(now.GetYear(), now.GetMonth(), now.GetDay(), 0, 0, 0)
      .Format(0, 1024);
}

TEST(UDPDataTest, NewRecordIsDatedToday) {
  const CUDPData d;
  for (const UDPDateTime& date : {d.GetSettlementDate(), d.GetMaturityDate(),
                                  d.GetIssueDate(), d.GetFirstCouponDate()}) {
    EXPECT_EQ(date.Format(0, 1024), Today());
  }
}

// The record of the golden bytes: dates 2024-03-15, 2024-05-15, 2023-11-15
// and 2034-02-15; coupon 4.25; yield to maturity; custom model "Net"; an
// "int" and a "date" key-value.
CUDPData GoldenRecord() {
  CUDPData d;
  d.m_bEnableUDP = 1;
  d.m_bEOMConversion = 1;
  d.SetSettlementDate(Ymd(20240315), false);
  d.SetFirstCouponDate(Ymd(20240515));
  d.SetIssueDate(Ymd(20231115), false);
  d.SetMaturityDate(Ymd(20340215), false);
  d.m_dConvFactor = 1.0;
  d.m_dCoupon = 4.25;
  d.m_UDPriceType = 3;
  d.m_YieldType = 2;
  d.m_sCustomPriceModelName = "Net";
  d.m_vectUDPKeyValue = {
      UDPKeyValue("int", "Days", "5", "D", "t", ""),
      UDPKeyValue("date", "DD", "06/28/2024", "", "", "a;b")};
  return d;
}

// Writer `version` (low byte), old codes and new codes as hex bytes.
std::string GoldenBytes(const std::string& v, const std::string& op,
                        const std::string& oy, const std::string& p,
                        const std::string& y) {
  return HexBytes(
      "01 5e 01 | " + v +
      " 00 00 08 | 'C' 'U' 'D' 'P' 'D'"
      // 1: flags and coupon frequency
      "| 54 04 01 00 00 00 | 54 04 00 00 00 00 | 54 04 00 00 00 00"
      "| 54 04 00 00 00 00 | 54 04 01 00 00 00 | 54 04 02 00 00 00"
      // 2-5: month, day, year of settlement, first coupon, issue, maturity
      "| 54 01 03 | 54 01 0f | 54 02 e8 07"
      "| 54 01 05 | 54 01 0f | 54 02 e8 07"
      "| 54 01 0b | 54 01 0f | 54 02 e7 07"
      "| 54 01 02 | 54 01 0f | 54 02 f2 07"
      // 6: conversion factor 1.0, coupon 4.25, day count, digits 10, offset
      "| 54 08 00 00 00 00 00 00 f0 3f | 54 08 00 00 00 00 00 00 11 40"
      "| 54 04 00 00 00 00 | 54 04 0a 00 00 00 | 54 04 00 00 00 00"
      // 7: old price code, net change type, old yield code, decimal, optional
      "| 54 04 " +
      op + " 00 00 00 | 54 04 00 00 00 00 | 54 04 " + oy +
      " 00 00 00 | 54 04 00 00 00 00 | 54 04 00 00 00 00"
      // 8: model name, 365, strip base, exchange display, types, PV01
      "| 53 04 00 01 'N' 'e' 't' | 54 04 00 00 00 00"
      "| 54 08 00 00 00 00 00 00 00 00 | 54 04 01 00 00 00"
      "| 54 04 " +
      p + " 00 00 00 | 54 04 " + y +
      " 00 00 00"
      "| 54 08 00 00 00 00 00 00 f0 3f"
      // 9: two key-values, span 4 + 60 + 78
      "| 45 8e 00 02 00"
      "| 01 3c 00 02 00 00 08 'U' 'D' 'P' 'K' 'e'"
      "| 53 04 00 01 'i' 'n' 't' | 53 05 00 01 'D' 'a' 'y' 's'"
      "| 53 02 00 01 '5' | 53 02 00 01 'D' | 53 02 00 01 't' | 53 01 00 01"
      "| 53 02 00 01 't' | 54 04 03 00 00 00 | 56 00 00"
      "| 01 4e 00 02 00 00 08 'U' 'D' 'P' 'K' 'e'"
      "| 53 05 00 01 'd' 'a' 't' 'e' | 53 03 00 01 'D' 'D'"
      "| 53 0b 00 01 '2' '0' '2' '4' '-' '0' '6' '-' '2' '8'"
      "| 53 01 00 01 | 53 01 00 01 | 53 04 00 01 'a' ';' 'b' | 53 01 00 01"
      "| 54 04 05 00 00 00 | 56 02 00 | 53 02 00 01 'a' | 53 02 00 01 'b'");
}

TEST(UDPDataTest, GoldenBytesBothWays) {
  CUDPData d = GoldenRecord();
  std::string bytes;
  EXPECT_EQ(d.WriteToString(bytes), 350u);
  // Price type 3 goes out as old code 2, yield type 2 as old code 5.
  EXPECT_EQ(ToHex(bytes), ToHex(GoldenBytes("02", "02", "05", "03", "02")));
  EXPECT_EQ(d.Measure(), 196u + 3 + 2 * 352);

  CUDPData back;
  EXPECT_EQ(back.ReadFrom(bytes.data(), bytes.size()), 350u);
  EXPECT_TRUE(back == d);  // key-values and all
}

TEST(UDPDataTest, OldStreamsMigrateTheirCodes) {
  // Writer version, old price and yield codes; price and yield types read.
  const std::tuple<const char*, const char*, const char*, int, int> cases[] = {
      // Below 0x08000000 the old codes decide: 0..3 give 1..4, else 5;
      // 4, 6, 7, 8 give 1, 3, 4, 5, else 2.
      {"ff 00 00 07", "03", "07", 4, 4},
      {"ff 00 00 07", "00", "04", 1, 1},
      {"ff 00 00 07", "09", "01", 5, 2},
      // From 0x08000000 on they are read and dropped.
      {"00 00 00 08", "03", "07", 6, 5}};
  for (const auto& [version, oldPrice, oldYield, price, yield] : cases) {
    SCOPED_TRACE(version);
    std::string bytes = GoldenBytes("00", oldPrice, oldYield, "06", "05");
    bytes.replace(3, 4, HexBytes(version));
    CUDPData d;
    d.ReadFrom(bytes.data(), bytes.size());
    EXPECT_EQ(d.m_UDPriceType, price);
    EXPECT_EQ(d.m_YieldType, yield);
  }
}

// ---------------------------------------------------------------------------
// Settings store and property reports: the same keys, exact to the blank.

using Kind = nv_ns::DMProperty::Kind;
struct Key {
  const char* key;
  const char* stored;  // as saved from StoreRecord(); null: not stored
  Kind kind;
  const char* reported;  // as reported for StoreRecord()
};
const Key kKeys[] = {
    {"UDP Enable User Defined Price Column", "1", Kind::kBool, "1"},
    {"UDP Retain settings ", "1", Kind::kBool, "1"},
    {"UDP Price Format", "0", Kind::kBool, "0"},
    {"UDP No Handle", "0", Kind::kBool, "0"},
    {"UDP EOM Conversion", "1", Kind::kBool, "1"},
    {"UDP Coupon Freq", "2", Kind::kString, "Semi Annual"},
    {"UDP Conversion Factor", "1", Kind::kDouble, "1"},
    {"UDP Coupon", "4.25", Kind::kDouble, "4.25"},
    {"UDP Day Count", "0", Kind::kString, "Actual/Actual"},
    {"UDP Digit Num", "10", Kind::kInt, "10"},
    {"UDP Net Change Offset", "3", Kind::kInt, "3"},
    {"UDP Type", "3", Kind::kString, "Yield To Maturity"},
    {"UDP Custom Price Model Name", "Net", Kind::kString, "Net"},
    {"UDP Exchange Price Type", "1", Kind::kString, "Decimal"},
    {"UDP Net Change Type", "0", Kind::kString, "Native"},
    {"UDP Yield Type", "4", Kind::kString, "((10000-(Price+Strip Base))/100)"},
    {"UDP Strip Base", "0.5", Kind::kDouble, "0.5"},
    {"UDP Decimal", "4", Kind::kInt, "4"},
    {"UDP Use YTM Optional Settings", "0", Kind::kBool, "0"},
    {"UDP Settle Date", nullptr, Kind::kString, "03/15/2024"},
    {"UDP Maturity Date", nullptr, Kind::kString, "02/15/2034"},
    {"UDP First Coupon Date", nullptr, Kind::kString, "05/15/2024"},
    {"UDP Issue Date", nullptr, Kind::kString, "11/15/2023"},
    {"UDP Convert to 365 Day Year", "1", Kind::kBool, "1"},
    {"UDP Version", "8.0.0.0", Kind::kString, "8.0.0.0"},
};

// The golden record with every stored field away from its default.
class UDPDataStoreTest : public ::testing::Test {
 protected:
  UDPDataStoreTest() : store_(CRegistryMgr::Instance(1)) {
    store_.Clear();
    previous_ = nv_ns::DMUtils::SetPropertySink(
        [this](const nv_ns::DMProperty& p) { seen_.push_back(p); });
    record_.m_bRetainUDPSetting = record_.m_bConvertTo365 = 1;
    record_.m_iOffset = 3;
    record_.m_iDecimal = 4;
    record_.m_dStripBase = 0.5;
    record_.m_YieldType = 4;
  }
  ~UDPDataStoreTest() override {
    store_.Clear();
    nv_ns::DMUtils::s_bDMEnabled = false;
    nv_ns::DMUtils::SetPropertySink(previous_);
  }

  CRegistryMgr& store_;
  std::vector<nv_ns::DMProperty> seen_;
  nv_ns::DMUtils::PropertySink previous_;
  CUDPData record_ = GoldenRecord();
};

TEST_F(UDPDataStoreTest, SaveWritesEveryKeyExactlyAndLoadReadsItBack) {
  ASSERT_EQ(CUDPData(record_).LoadSaveSettings(false), 1);
  for (const Key& k : kKeys) {
    SCOPED_TRACE(k.key);
    EXPECT_EQ(store_.ReadRegString("UserDefinedPrice", k.key, "-", 1),
              k.stored ? k.stored : "-");
  }
  // The trimmed name would be another value.
  EXPECT_FALSE(store_.ExistRegValue("UserDefinedPrice", "UDP Retain settings"));
  CUDPData back;
  ASSERT_EQ(back.LoadSaveSettings(true), 1);
  back.m_vectUDPKeyValue = record_.m_vectUDPKeyValue;          // not stored
  back.SetSettlementDate(record_.GetSettlementDate(), false);  // nor these
  back.SetMaturityDate(record_.GetMaturityDate(), false);
  back.SetIssueDate(record_.GetIssueDate(), false);
  back.SetFirstCouponDate(record_.GetFirstCouponDate());
  EXPECT_TRUE(back == record_);
}

TEST_F(UDPDataStoreTest, StoreWithoutVersionHoldsOldCodes) {
  for (bool withVersion : {false, true}) {
    SCOPED_TRACE(withVersion);
    store_.Clear();
    store_.WriteRegInt("UserDefinedPrice", "UDP Type", 1);
    store_.WriteRegInt("UserDefinedPrice", "UDP Yield Type", 6);
    if (withVersion) {
      store_.WriteRegString("UserDefinedPrice", "UDP Version", "8.0.0.0");
    }
    CUDPData d;
    d.m_sCustomPriceModelName = "old";
    ASSERT_EQ(d.LoadSaveSettings(true), 1);
    EXPECT_EQ(d.m_UDPriceType, withVersion ? 1 : 2);
    EXPECT_EQ(d.m_YieldType, withVersion ? 6 : 3);
    // Absent keys keep the field; the name is read into an empty local.
    EXPECT_EQ(d.m_dCoupon, 8.5);
    EXPECT_EQ(d.m_sCustomPriceModelName, "");
  }
}

TEST_F(UDPDataStoreTest, TwentyFivePropertiesInOrderInEachScope) {
  record_.GenDMDefaultProps();  // reporting is off: nothing
  nv_ns::DMUtils::s_bDMEnabled = true;
  record_.GenDMDefaultProps();
  record_.GenDMGlobalProps(true);
  record_.GenDMLocalProps(false, nv_ns::DMWindowInfo{7, "Bonds"});
  ASSERT_EQ(seen_.size(), 75u);
  for (std::size_t i = 0; i < seen_.size(); ++i) {
    const nv_ns::DMProperty& p = seen_[i];
    const Key& k = kKeys[i % 25];
    SCOPED_TRACE(std::to_string(i) + " " + k.key);
    EXPECT_EQ(p.scope, static_cast<nv_ns::DMProperty::Scope>(i / 25));
    EXPECT_EQ(p.group, nv_ns::VAL_PROPERTY_GROUP_ZDT_ADVANCED);
    EXPECT_EQ(p.key, k.key);
    EXPECT_EQ(p.kind, k.kind);
    EXPECT_EQ(p.value, k.reported);
    EXPECT_EQ(p.flag, i / 25 == 1);
    EXPECT_EQ(p.window.m_sWindowName, i / 25 == 2 ? "Bonds" : "");
  }
}

// ---------------------------------------------------------------------------
// ValidateData and comparisons.

TEST(UDPDataValidateTest, FirstFailureDecides) {
  struct Case {
    const char* what;
    int settle, issue, first;  // settle 0: now; maturity is 2095-02-15
    bool optional;
    double factor;
    int freq, code;
  };
  const Case cases[] = {
      {"valid", 20900301, 20900215, 20900815, false, 1, 2, 0},
      {"factor 5.0 passes", 20900301, 20900215, 20900815, false, 5.0, 2, 0},
      {"factor 0.1 passes", 20900301, 20900215, 20900815, false, 0.1, 2, 0},
      {"factor above 5", 20900301, 20900215, 20900815, false, 5.000001, 2, 2},
      {"settlement at maturity", 20950215, 20900215, 20900815, false, 1, 2, 1},
      {"settlement today", 0, 20900215, 20900815, false, 1, 2, 1},
      {"optional off, issue late", 20900301, 20990101, 20900815, false, 1, 2,
       0},
      {"issue on first coupon", 20900301, 20900815, 20900815, true, 1, 2, 4},
      {"first coupon at maturity", 20900301, 20900215, 20950215, true, 1, 2, 6},
      {"issue date invalid", 20900301, 20901301, 20900815, true, 1, 2, 3},
      {"on the calendar", 20900301, 20900215, 20900815, true, 1, 2, 0},
      {"off the calendar", 20900301, 20900215, 20900820, true, 1, 2, 8},
      {"zero frequency", 20900301, 20900215, 20900815, true, 1, 0, 8},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CUDPData d;
    d.SetSettlementDate(c.settle ? Ymd(c.settle) : UDPDateTime::GetTickCount(),
                        false);
    d.SetIssueDate(Ymd(c.issue), false);
    d.SetFirstCouponDate(Ymd(c.first));
    d.SetMaturityDate(Ymd(20950215), false);
    d.m_bYTMOptionalSettings = c.optional;
    d.m_dConvFactor = c.factor;
    d.m_CouponFreq = c.freq;
    const CUDPData before = d;
    EXPECT_EQ(d.ValidateData(), c.code);
    EXPECT_TRUE(d == before);
  }
}

TEST(UDPDataCompareTest, FirstDifferenceDecides) {
  using Change = void (*)(CUDPData&);
  const std::pair<Change, int> cases[] = {
      {[](CUDPData& d) { d.m_bEnableUDP = 7; }, 0},  // flags are normalised
      {[](CUDPData& d) { d.m_bNoHandle = 0; }, -1},
      {[](CUDPData& d) { d.m_dtSettleDateDay = 20; }, 1},
      {[](CUDPData& d) { d.m_dConvFactor = 0.9; }, -1},
      {[](CUDPData& d) { d.m_dCoupon = std::nan(""); }, 1},
      {[](CUDPData& d) { d.m_YieldType = 1; }, -1},
      {[](CUDPData& d) { d.m_sCustomPriceModelName = "Net\xe9"; }, 1},
      {[](CUDPData& d) { d.m_sCustomPriceModelName = "Ne"; }, -1},
      {[](CUDPData& d) { d.m_dPV01 = 2.0; }, 1},
      // Key-values count by number only.
      {[](CUDPData& d) { d.m_vectUDPKeyValue[0].SetValue("6"); }, 0},
      {[](CUDPData& d) { d.m_vectUDPKeyValue.pop_back(); }, -1},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    CUDPData base = GoldenRecord();
    base.m_bNoHandle = 1;
    CUDPData other = base;
    cases[i].first(other);
    const int result = other.CompareTo(base);
    EXPECT_EQ((result > 0) - (result < 0), cases[i].second);
    EXPECT_FALSE(other == base);
  }
}

// ---------------------------------------------------------------------------
// Setters and contract seeding.

TEST(UDPDataSettersTest, EveryMatchingKeyValueFollowsTheTerms) {
  CUDPData d;
  const std::pair<const char*, const char*> items[] = {
      {"date", "Maturity Date"},    {"date", "Maturity Date"},
      {"string", "Maturity Date"},  {"date", "maturity date"},
      {"date", "Settlement Date"},  {"date", "Issue Date"},
      {"enum", "Coupon Frequency"}, {"string", "Coupon Frequency"},
      {"int", "Coupon Frequency"},  {"double", "Coupon"}};
  for (const auto& [type, key] : items) {
    d.m_vectUDPKeyValue.emplace_back(type, key, "-", "", "", "");
  }
  d.SetMaturityDate(Ymd(20340215), false);  // the field alone
  EXPECT_EQ(d.m_vectUDPKeyValue[0].GetValue(), "-");
  d.SetMaturityDate(Ymd(20340215), true);
  d.SetSettlementDate(Ymd(20240315), true);
  d.SetIssueDate(Ymd(20231115), true);
  d.SetCouponFreq(4, true);
  d.SetCoupon(1.0 / 3.0, true);
  const char* expected[] = {
      "02/15/2034", "02/15/2034", "-",         "-", "03/15/2024",
      "11/15/2023", "Quarterly",  "Quarterly", "-", "0.333333"};
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_EQ(d.m_vectUDPKeyValue[i].GetValue(), expected[i]) << i;
  }
  EXPECT_EQ(d.m_dtMaturityDateYear + d.GetCouponFreq(), 2034 + 4);
}

TEST(UDPDataSeedingTest, DeliveryDates) {
  struct Case {
    const char* product;
    int contract;
    const char* model;
    bool keep;
    const char* before;
    const char* after;  // null: today
  };
  const Case cases[] = {
      // June 2024 ends on a Sunday, August 2024 on a Saturday.
      {"ZN", 20240610, "", false, "x", "06/28/2024"},
      {"ZB", 20240830, "", false, "x", "08/30/2024"},
      // December rolls to January 2025: Wed 1, Thu 2, Fri 3.
      {"ZT", 20241220, "", false, "x", "01/03/2025"},
      // June 2024 starts on a Saturday, July on a Monday.
      {"ZF", 20240501, "", false, "x", "06/05/2024"},
      {"ZF", 20240610, "", false, "x", "07/03/2024"},
      {"ZN", 20240610, "Net Carry", true, "x", "06/28/2024"},  // product first
      {"FGBL", 20240610, "", false, "x", nullptr},
      {"FGBL", 20240610, "Net Carry", true, "x", "x"},
      {"FGBL", 20240610, "Net Carry", true, "", nullptr},  // empty: not kept
      {"FGBL", 20240610, "Other", true, "x", nullptr},
      {"ZN", 20240230, "", false, "x", "x"},  // invalid contract date
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.product) + " " + c.model);
    CUDPData d;
    d.m_sCustomPriceModelName = c.model;
    for (const char* type : {"date", "date", "string"}) {
      d.m_vectUDPKeyValue.emplace_back(type, "Delivery Date", c.before, "", "",
                                       "");
    }
    d.m_vectUDPKeyValue.emplace_back("date", "Contract Date", "y", "", "", "");
    d.SetMiscContractInfo(c.product, Ymd(c.contract), true, c.keep);
    for (int i : {0, 1}) {
      const std::string value = d.m_vectUDPKeyValue[i].GetValue();
      // Today comes with the time of day.
      EXPECT_EQ(c.after ? value : value.substr(0, Today().size()),
                c.after ? c.after : Today());
    }
    EXPECT_EQ(d.m_vectUDPKeyValue[2].GetValue(), c.before);
    const bool valid = Ymd(c.contract).GetStatus() == UDPDateTime::valid;
    EXPECT_EQ(d.m_vectUDPKeyValue[3].GetValue(),
              valid ? Ymd(c.contract / 100 * 100 + 1).Format(0, 1024) : "y");
  }
}

TEST(UDPDataSeedingTest, ConversionFactorTypeAndApply) {
  const std::tuple<const char*, bool, const char*> cases[] = {
      {"ZN", true, "ZN"},
      {"ZQ", true, "ZT"},
      {"", true, "ZT"},
      {"zn", true, "ZT"},
      {"ZN", false, "ZT"}};
  for (const auto& [product, apply, expected] : cases) {
    SCOPED_TRACE(std::string(product) + (apply ? " apply" : ""));
    CUDPData d;
    d.m_vectUDPKeyValue = {
        UDPKeyValue("enum", "Futures Conversion Factor Type", "ZT", "", "",
                    "ZT;ZN;ZB"),
        UDPKeyValue("date", "Delivery Date", "kept", "", "", "")};
    // An invalid contract date still lets the factor type through.
    d.SetMiscContractInfo(product, Ymd(20241301), apply, false);
    EXPECT_EQ(d.m_vectUDPKeyValue[0].GetValue(), expected);
    EXPECT_EQ(d.m_vectUDPKeyValue[1].GetValue(), "kept");
  }
}

}  // namespace
