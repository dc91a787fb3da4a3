// CUDPData: defaults, the wire form (golden bytes built from the item
// tables), old codes, the settings store, property reports, ValidateData,
// comparisons, the setters and contract seeding.
#include "nvshared/udp/udp_data.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/testing/hex_bytes.h"

namespace {

using nv_ns::UDPDateTime;
using nvshared::testing::HexBytes;
using nvshared::testing::ToHex;

UDPDateTime Day(int y, int m, int d) { return UDPDateTime(y, m, d, 0, 0, 0); }

std::string Today() {
  const UDPDateTime now = UDPDateTime::GetTickCount();
  return Day(now.GetYear(), now.GetMonth(), now.GetDay()).Format(0, 1024);
}

TEST(UDPDataTest, NewRecordDefaultsAndNames) {
  const CUDPData d;
  const UDPDateTime now = UDPDateTime::GetTickCount();
  for (const UDPDateTime& date : {d.GetSettlementDate(), d.GetMaturityDate(),
                                  d.GetIssueDate(), d.GetFirstCouponDate()}) {
    EXPECT_EQ(date.Format(0, 1024), Today());
  }
  EXPECT_EQ(d.m_dtSettleDateYear, now.GetYear());
  EXPECT_EQ(d.m_dCoupon, 8.5);
  EXPECT_EQ(d.m_dConvFactor, 1.0);
  EXPECT_EQ(d.m_CouponFreq, 2);
  EXPECT_EQ(d.m_UDPriceType, 5);
  EXPECT_EQ(d.m_YieldType, 2);
  EXPECT_EQ(d.m_ExchPriceDisplayType, 1);
  EXPECT_EQ(d.m_bEOMConversion, 1);
  EXPECT_EQ(d.m_iDigitNumber, 10);
  EXPECT_EQ(d.m_dPV01, 1.0);
  EXPECT_EQ(d.m_bEnableUDP + d.m_iDayCount + d.m_bConvertTo365, 0);
  EXPECT_TRUE(d.m_vectUDPKeyValue.empty());
  // The look-ups are the record's own static members.
  EXPECT_EQ(CUDPData::GetPriceTypeName(nv_ns::UDPPriceType(2)), "");
  EXPECT_EQ(CUDPData::GetPriceTypeNameEx(nv_ns::UDPPriceType(2)), "Yield");
  EXPECT_EQ(CUDPData::GetCouponFreqString(nv_ns::UDPCouponFreq(2)),
            "Semi Annual");
}

// The record of the golden bytes: dates 2024-03-15, 2024-05-15, 2023-11-15
// and 2034-02-15; coupon 4.25; yield to maturity; custom model "Net"; an
// "int" and a "date" key-value.
CUDPData GoldenRecord() {
  CUDPData d;
  d.m_bEnableUDP = 1;
  d.m_bEOMConversion = 1;
  d.SetSettlementDate(Day(2024, 3, 15), false);
  d.SetFirstCouponDate(Day(2024, 5, 15));
  d.SetIssueDate(Day(2023, 11, 15), false);
  d.SetMaturityDate(Day(2034, 2, 15), false);
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
std::string GoldenBytes(const char* version, const char* oldPrice,
                        const char* oldYield, const char* price,
                        const char* yield) {
  const std::string v = version, op = oldPrice, oy = oldYield, p = price,
                    y = yield;
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
  EXPECT_TRUE(back == d);
  EXPECT_EQ(back.m_vectUDPKeyValue[1].GetValue(), "06/28/2024");
}

TEST(UDPDataTest, OldStreamsMigrateTheirCodes) {
  struct Case {
    const char* version;
    const char* oldPrice;
    const char* oldYield;
    int price;
    int yield;
  };
  const Case cases[] = {
      // Below 0x08000000 the old codes decide; the new items are dropped.
      {"ff 00 00 07", "03", "07", 4, 4},
      {"ff 00 00 07", "00", "04", 1, 1},
      {"ff 00 00 07", "09", "01", 5, 2},
      // From 0x08000000 on the old codes are read and dropped.
      {"00", "03", "07", 6, 5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.version);
    std::string version = c.version;
    std::string bytes = GoldenBytes("00", c.oldPrice, c.oldYield, "06", "05");
    if (version.size() > 2) {
      bytes.replace(3, 4, HexBytes(version));
    }
    CUDPData d;
    d.ReadFrom(bytes.data(), bytes.size());
    EXPECT_EQ(d.m_UDPriceType, c.price);
    EXPECT_EQ(d.m_YieldType, c.yield);
  }
}

TEST(UDPDataTest, Pre77CodesMapOneWay) {
  const int price[][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 5}, {-1, 5}};
  const int yield[][2] = {{4, 1}, {5, 2}, {6, 3}, {7, 4},
                          {8, 5}, {0, 2}, {1, 2}, {9, 2}};
  CUDPData d;
  for (const auto& c : price) {
    SCOPED_TRACE(c[0]);
    d.SetPre77PriceType(c[0]);
    EXPECT_EQ(d.m_UDPriceType, c[1]);
  }
  for (const auto& c : yield) {
    SCOPED_TRACE(c[0]);
    d.SetPre77YieldType(c[0]);
    EXPECT_EQ(d.m_YieldType, c[1]);
  }
  // Types 5 and 6 leave as old code 0, which comes back as 1: not exact.
  for (int type : {5, 6}) {
    CUDPData w = GoldenRecord();
    w.m_UDPriceType = type;
    std::string bytes;
    w.WriteToString(bytes);
    EXPECT_EQ(bytes[12 + 36 + 40 + 38 + 2], 0);
  }
}

// ---------------------------------------------------------------------------
// Settings store.

class UDPDataStoreTest : public ::testing::Test {
 protected:
  UDPDataStoreTest() : store_(CRegistryMgr::Instance(1)) { store_.Clear(); }
  ~UDPDataStoreTest() override { store_.Clear(); }

  std::string Stored(const char* key) {
    return store_.ReadRegString("UserDefinedPrice", key, "<none>", 1);
  }

  CRegistryMgr& store_;
};

TEST_F(UDPDataStoreTest, SaveWritesEveryKeyExactly) {
  CUDPData d = GoldenRecord();
  d.m_bRetainUDPSetting = 1;
  d.m_iOffset = 3;
  d.m_iDecimal = 4;
  d.m_dStripBase = 0.5;
  d.m_bConvertTo365 = 1;
  d.m_YieldType = 4;
  ASSERT_EQ(d.LoadSaveSettings(false), 1);
  const std::pair<const char*, const char*> keys[] = {
      {"UDP Enable User Defined Price Column", "1"},
      {"UDP Retain settings ", "1"},
      {"UDP Price Format", "0"},
      {"UDP No Handle", "0"},
      {"UDP EOM Conversion", "1"},
      {"UDP Coupon Freq", "2"},
      {"UDP Conversion Factor", "1"},
      {"UDP Coupon", "4.25"},
      {"UDP Day Count", "0"},
      {"UDP Digit Num", "10"},
      {"UDP Net Change Offset", "3"},
      {"UDP Type", "3"},
      {"UDP Custom Price Model Name", "Net"},
      {"UDP Exchange Price Type", "1"},
      {"UDP Net Change Type", "0"},
      {"UDP Yield Type", "4"},
      {"UDP Strip Base", "0.5"},
      {"UDP Decimal", "4"},
      {"UDP Use YTM Optional Settings", "0"},
      {"UDP Convert to 365 Day Year", "1"},
      {"UDP Version", "8.0.0.0"},
  };
  for (const auto& [key, value] : keys) {
    SCOPED_TRACE(key);
    EXPECT_EQ(Stored(key), value);
  }
  // The key keeps its trailing blank: the trimmed name is another value.
  EXPECT_EQ(Stored("UDP Retain settings"), "<none>");

  CUDPData back;
  back.m_sCustomPriceModelName = "old";
  ASSERT_EQ(back.LoadSaveSettings(true), 1);
  // Dates, PV01 and key-values are not stored.
  back.m_vectUDPKeyValue = d.m_vectUDPKeyValue;
  back.m_dtSettleDateMonth = d.m_dtSettleDateMonth;
  back.m_dtSettleDateDay = d.m_dtSettleDateDay;
  back.m_dtSettleDateYear = d.m_dtSettleDateYear;
  back.m_dtFirstCouponMonth = d.m_dtFirstCouponMonth;
  back.m_dtFirstCouponDay = d.m_dtFirstCouponDay;
  back.m_dtFirstCouponYear = d.m_dtFirstCouponYear;
  back.m_dtIssueDateMonth = d.m_dtIssueDateMonth;
  back.m_dtIssueDateDay = d.m_dtIssueDateDay;
  back.m_dtIssueDateYear = d.m_dtIssueDateYear;
  back.m_dtMaturityDateMonth = d.m_dtMaturityDateMonth;
  back.m_dtMaturityDateDay = d.m_dtMaturityDateDay;
  back.m_dtMaturityDateYear = d.m_dtMaturityDateYear;
  EXPECT_TRUE(back == d);
}

TEST_F(UDPDataStoreTest, StoreWithoutVersionHoldsOldCodes) {
  struct Case {
    bool withVersion;
    int price;
    int yield;
  };
  const Case cases[] = {{false, 2, 3}, {true, 1, 6}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.withVersion);
    store_.Clear();
    store_.WriteRegInt("UserDefinedPrice", "UDP Type", 1);
    store_.WriteRegInt("UserDefinedPrice", "UDP Yield Type", 6);
    if (c.withVersion) {
      store_.WriteRegString("UserDefinedPrice", "UDP Version", "8.0.0.0");
    }
    CUDPData d;
    d.m_sCustomPriceModelName = "kept?";
    ASSERT_EQ(d.LoadSaveSettings(true), 1);
    EXPECT_EQ(d.m_UDPriceType, c.price);
    EXPECT_EQ(d.m_YieldType, c.yield);
    // Absent keys keep the field's value; the name is read into a local
    // that starts empty, so an absent name empties the field.
    EXPECT_EQ(d.m_dCoupon, 8.5);
    EXPECT_EQ(d.m_sCustomPriceModelName, "");
  }
}

// ---------------------------------------------------------------------------
// Property reports.

class UDPDataPropertiesTest : public ::testing::Test {
 protected:
  UDPDataPropertiesTest() {
    previous_ = nv_ns::DMUtils::SetPropertySink(
        [this](const nv_ns::DMProperty& p) { seen_.push_back(p); });
    nv_ns::DMUtils::s_bDMEnabled = true;
  }
  ~UDPDataPropertiesTest() override {
    nv_ns::DMUtils::s_bDMEnabled = false;
    nv_ns::DMUtils::SetPropertySink(previous_);
  }

  std::vector<nv_ns::DMProperty> seen_;
  nv_ns::DMUtils::PropertySink previous_;
};

TEST_F(UDPDataPropertiesTest, TwentyFivePropertiesInOrderInEachScope) {
  using Kind = nv_ns::DMProperty::Kind;
  using Scope = nv_ns::DMProperty::Scope;
  const CUDPData d = GoldenRecord();
  struct Expected {
    const char* key;
    Kind kind;
    const char* value;
  };
  const Expected expected[] = {
      {"UDP Enable User Defined Price Column", Kind::kBool, "1"},
      {"UDP Retain settings ", Kind::kBool, "0"},
      {"UDP Price Format", Kind::kBool, "0"},
      {"UDP No Handle", Kind::kBool, "0"},
      {"UDP EOM Conversion", Kind::kBool, "1"},
      {"UDP Coupon Freq", Kind::kString, "Semi Annual"},
      {"UDP Conversion Factor", Kind::kDouble, "1"},
      {"UDP Coupon", Kind::kDouble, "4.25"},
      {"UDP Day Count", Kind::kString, "Actual/Actual"},
      {"UDP Digit Num", Kind::kInt, "10"},
      {"UDP Net Change Offset", Kind::kInt, "0"},
      {"UDP Type", Kind::kString, "Yield To Maturity"},
      {"UDP Custom Price Model Name", Kind::kString, "Net"},
      {"UDP Exchange Price Type", Kind::kString, "Decimal"},
      {"UDP Net Change Type", Kind::kString, "Native"},
      {"UDP Yield Type", Kind::kString, "(100-Price)"},
      {"UDP Strip Base", Kind::kDouble, "0"},
      {"UDP Decimal", Kind::kInt, "0"},
      {"UDP Use YTM Optional Settings", Kind::kBool, "0"},
      {"UDP Settle Date", Kind::kString, "03/15/2024"},
      {"UDP Maturity Date", Kind::kString, "02/15/2034"},
      {"UDP First Coupon Date", Kind::kString, "05/15/2024"},
      {"UDP Issue Date", Kind::kString, "11/15/2023"},
      {"UDP Convert to 365 Day Year", Kind::kBool, "0"},
      {"UDP Version", Kind::kString, "8.0.0.0"},
  };
  nv_ns::DMWindowInfo window;
  window.m_iWindowId = 7;
  window.m_sWindowName = "Bonds";
  d.GenDMDefaultProps();
  d.GenDMGlobalProps(true);
  d.GenDMLocalProps(false, window);
  ASSERT_EQ(seen_.size(), 75u);
  for (std::size_t i = 0; i < seen_.size(); ++i) {
    const nv_ns::DMProperty& p = seen_[i];
    const Expected& e = expected[i % 25];
    SCOPED_TRACE(std::to_string(i) + " " + e.key);
    EXPECT_EQ(p.scope, static_cast<Scope>(i / 25));
    EXPECT_EQ(p.group, nv_ns::VAL_PROPERTY_GROUP_ZDT_ADVANCED);
    EXPECT_EQ(p.key, e.key);
    EXPECT_EQ(p.kind, e.kind);
    EXPECT_EQ(p.value, e.value);
    EXPECT_EQ(p.flag, i / 25 == 1);
    EXPECT_EQ(p.window.m_iWindowId, i / 25 == 2 ? 7 : 0);
  }
  nv_ns::DMUtils::s_bDMEnabled = false;
  d.GenDMDefaultProps();
  d.GenDMLocalProps(true, window);
  EXPECT_EQ(seen_.size(), 75u);
}

// ---------------------------------------------------------------------------
// ValidateData.

TEST(UDPDataValidateTest, FirstFailureDecides) {
  struct Case {
    const char* what;
    void (*change)(CUDPData&);
    int code;
  };
  const Case cases[] = {
      {"valid", [](CUDPData&) {}, 0},
      {"factor 5.0 passes", [](CUDPData& d) { d.m_dConvFactor = 5.0; }, 0},
      {"factor 0.1 passes", [](CUDPData& d) { d.m_dConvFactor = 0.1; }, 0},
      {"factor above 5", [](CUDPData& d) { d.m_dConvFactor = 5.000001; }, 2},
      {"factor below 0.1", [](CUDPData& d) { d.m_dConvFactor = 0.0999; }, 2},
      {"factor NaN",
       [](CUDPData& d) {
         d.m_dConvFactor = std::numeric_limits<double>::quiet_NaN();
       },
       2},
      {"settlement at maturity",
       [](CUDPData& d) { d.SetSettlementDate(d.GetMaturityDate(), false); }, 1},
      {"settlement today",
       [](CUDPData& d) {
         d.SetSettlementDate(UDPDateTime::GetTickCount(), false);
       },
       1},
      {"settlement first, factor second",
       [](CUDPData& d) {
         d.SetSettlementDate(Day(2000, 1, 3), false);
         d.m_dConvFactor = 9.0;
       },
       1},
      {"no optional settings: issue after maturity ignored",
       [](CUDPData& d) { d.SetIssueDate(Day(2099, 6, 1), false); }, 0},
      {"issue not before first coupon",
       [](CUDPData& d) {
         d.m_bYTMOptionalSettings = 1;
         d.SetIssueDate(Day(2090, 8, 15), false);
       },
       4},
      {"first coupon not before maturity",
       [](CUDPData& d) {
         d.m_bYTMOptionalSettings = 1;
         d.SetFirstCouponDate(Day(2095, 2, 15));
       },
       6},
      {"issue date invalid",
       [](CUDPData& d) {
         d.m_bYTMOptionalSettings = 1;
         d.m_dtIssueDateMonth = 13;
       },
       3},
      {"first coupon on the calendar",
       [](CUDPData& d) { d.m_bYTMOptionalSettings = 1; }, 0},
      {"first coupon off the calendar",
       [](CUDPData& d) {
         d.m_bYTMOptionalSettings = 1;
         d.SetFirstCouponDate(Day(2090, 8, 20));
       },
       8},
      {"zero frequency: no calendar, no division",
       [](CUDPData& d) {
         d.m_bYTMOptionalSettings = 1;
         d.m_CouponFreq = 0;
       },
       8},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CUDPData d;
    d.SetSettlementDate(Day(2090, 3, 1), false);
    d.SetIssueDate(Day(2090, 2, 15), false);
    d.SetFirstCouponDate(Day(2090, 8, 15));
    d.SetMaturityDate(Day(2095, 2, 15), false);
    c.change(d);
    const CUDPData before = d;
    EXPECT_EQ(d.ValidateData(), c.code);
    if (!std::isnan(d.m_dConvFactor)) {
      EXPECT_TRUE(d == before);
    }
  }
}

// ---------------------------------------------------------------------------
// Comparisons.

TEST(UDPDataCompareTest, FirstDifferenceDecides) {
  struct Case {
    const char* what;
    void (*change)(CUDPData&);
    int sign;
  };
  const Case cases[] = {
      {"flag normalised", [](CUDPData& d) { d.m_bEnableUDP = 7; }, 0},
      {"flag", [](CUDPData& d) { d.m_bNoHandle = 0; }, -1},
      {"settlement day", [](CUDPData& d) { d.m_dtSettleDateDay = 20; }, 1},
      {"maturity year", [](CUDPData& d) { d.m_dtMaturityDateYear = 2030; }, -1},
      {"factor", [](CUDPData& d) { d.m_dConvFactor = 0.9; }, -1},
      {"coupon NaN",
       [](CUDPData& d) {
         d.m_dCoupon = std::numeric_limits<double>::quiet_NaN();
       },
       1},
      {"day count", [](CUDPData& d) { d.m_iDayCount = 3; }, 1},
      {"yield type", [](CUDPData& d) { d.m_YieldType = 1; }, -1},
      {"model name, unsigned bytes",
       [](CUDPData& d) { d.m_sCustomPriceModelName = "Net\xe9"; }, 1},
      {"model name shorter",
       [](CUDPData& d) { d.m_sCustomPriceModelName = "Ne"; }, -1},
      {"PV01", [](CUDPData& d) { d.m_dPV01 = 2.0; }, 1},
      {"key-value text only",
       [](CUDPData& d) { d.m_vectUDPKeyValue[0].SetValue("6"); }, 0},
      {"key-value count", [](CUDPData& d) { d.m_vectUDPKeyValue.pop_back(); },
       -1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CUDPData base = GoldenRecord();
    base.m_bNoHandle = 1;
    CUDPData other = base;
    c.change(other);
    const int result = other.CompareTo(base);
    EXPECT_EQ((result > 0) - (result < 0), c.sign);
    EXPECT_FALSE(other == base);
  }
  EXPECT_EQ(GoldenRecord().CompareTo(GoldenRecord()), 0);
}

// ---------------------------------------------------------------------------
// Setters and contract seeding.

TEST(UDPDataSettersTest, MatchingKeyValuesFollowTheTerms) {
  CUDPData d;
  d.m_vectUDPKeyValue = {
      UDPKeyValue("date", "Maturity Date", "", "", "", ""),
      UDPKeyValue("date", "Maturity Date", "x", "", "", ""),
      UDPKeyValue("string", "Maturity Date", "kept", "", "", ""),
      UDPKeyValue("date", "maturity date", "kept", "", "", ""),
      UDPKeyValue("date", "Settlement Date", "", "", "", ""),
      UDPKeyValue("date", "Issue Date", "", "", "", ""),
      UDPKeyValue("enum", "Coupon Frequency", "", "", "", ""),
      UDPKeyValue("string", "Coupon Frequency", "", "", "", ""),
      UDPKeyValue("int", "Coupon Frequency", "kept", "", "", ""),
      UDPKeyValue("double", "Coupon", "", "", "", ""),
  };
  d.SetMaturityDate(Day(2034, 2, 15), false);
  EXPECT_EQ(d.m_vectUDPKeyValue[0].GetValue(), "");
  EXPECT_EQ(d.m_dtMaturityDateYear, 2034);
  d.SetMaturityDate(Day(2034, 2, 15), true);
  d.SetSettlementDate(Day(2024, 3, 15), true);
  d.SetIssueDate(Day(2023, 11, 15), true);
  d.SetCouponFreq(4, true);
  d.SetCoupon(1.0 / 3.0, true);
  const char* expected[] = {
      "02/15/2034", "02/15/2034", "kept",      "kept", "03/15/2024",
      "11/15/2023", "Quarterly",  "Quarterly", "kept", "0.333333"};
  for (std::size_t i = 0; i < d.m_vectUDPKeyValue.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(d.m_vectUDPKeyValue[i].GetValue(), expected[i]);
  }
  EXPECT_EQ(d.GetCouponFreq(), 4);
  EXPECT_EQ(d.GetCoupon(), 1.0 / 3.0);
  d.SetCoupon(4.125, true);
  EXPECT_EQ(d.m_vectUDPKeyValue[9].GetValue(), "4.125");
}

TEST(UDPDataSeedingTest, DeliveryAndContractDates) {
  struct Case {
    const char* what;
    const char* product;
    UDPDateTime contract;
    const char* model;
    bool keep;
    const char* oldValue;
    const char* delivery;  // nullptr: today
    const char* contractDate;
  };
  const UDPDateTime invalid(2024, 2, 30, 0, 0, 0);
  const Case cases[] = {
      // June 2024 ends on a Sunday: the Friday before.
      {"ZN last weekday", "ZN", Day(2024, 6, 10), "", false, "x", "06/28/2024",
       "06/01/2024"},
      {"UB, month ends on a weekday", "UB", Day(2024, 7, 3), "", false, "x",
       "07/31/2024", "07/01/2024"},
      {"ZB, month ends on Saturday", "ZB", Day(2024, 8, 30), "", false, "x",
       "08/30/2024", "08/01/2024"},
      // December rolls to January 2025: Wed 1, Thu 2, Fri 3.
      {"ZT December", "ZT", Day(2024, 12, 20), "", false, "x", "01/03/2025",
       "12/01/2024"},
      // July 2024 starts on a Monday; June 2024 starts on a Saturday.
      {"ZF", "ZF", Day(2024, 6, 1), "", false, "x", "07/03/2024", "06/01/2024"},
      {"ZF, month starting on a weekend", "ZF", Day(2024, 5, 1), "", false, "x",
       "06/05/2024", "05/01/2024"},
      {"ZN ignores keepExisting", "ZN", Day(2024, 6, 10), "Net Carry", true,
       "x", "06/28/2024", "06/01/2024"},
      {"other product: today", "FGBL", Day(2024, 6, 10), "", false, "x",
       nullptr, "06/01/2024"},
      {"keep under Net Carry", "FGBL", Day(2024, 6, 10), "Net Carry", true, "x",
       "x", "06/01/2024"},
      {"keep under Forward Yield", "", Day(2024, 6, 10), "Forward Yield", true,
       "x", "x", "06/01/2024"},
      {"empty value is not kept", "FGBL", Day(2024, 6, 10), "Net Carry", true,
       "", nullptr, "06/01/2024"},
      {"other model: today", "FGBL", Day(2024, 6, 10), "Other", true, "x",
       nullptr, "06/01/2024"},
      {"invalid contract date", "ZN", invalid, "", false, "x", "x", "y"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CUDPData d;
    d.m_sCustomPriceModelName = c.model;
    d.m_vectUDPKeyValue = {
        UDPKeyValue("date", "Delivery Date", c.oldValue, "", "", ""),
        UDPKeyValue("date", "Contract Date", "y", "", "", ""),
        UDPKeyValue("date", "Delivery Date", c.oldValue, "", "", ""),
        UDPKeyValue("string", "Delivery Date", "z", "", "", ""),
    };
    d.SetMiscContractInfo(c.product, c.contract, true, c.keep);
    for (int i : {0, 2}) {
      const std::string value = d.m_vectUDPKeyValue[i].GetValue();
      if (c.delivery != nullptr) {
        EXPECT_EQ(value, c.delivery);
      } else {
        // Today, with the time of day.
        EXPECT_EQ(value.substr(0, Today().size()), Today());
      }
    }
    EXPECT_EQ(d.m_vectUDPKeyValue[1].GetValue(), c.contractDate);
    EXPECT_EQ(d.m_vectUDPKeyValue[3].GetValue(), "z");
  }
}

TEST(UDPDataSeedingTest, ConversionFactorTypeAndApply) {
  struct Case {
    const char* product;
    bool apply;
    const char* expected;
  };
  const Case cases[] = {
      {"ZN", true, "ZN"}, {"ZB", true, "ZB"},  {"ZQ", true, "ZT"},
      {"", true, "ZT"},   {"ZN", false, "ZT"}, {"zn", true, "ZT"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.product) + (c.apply ? " apply" : ""));
    CUDPData d;
    d.m_vectUDPKeyValue = {
        UDPKeyValue("enum", "Futures Conversion Factor Type", "ZT", "", "",
                    "ZT;ZN;ZB"),
        UDPKeyValue("date", "Delivery Date", "kept", "", "", "")};
    const CUDPData before = d;
    // An invalid contract date still lets the factor type through.
    d.SetMiscContractInfo(c.product, UDPDateTime(2024, 13, 1, 0, 0, 0), c.apply,
                          false);
    EXPECT_EQ(d.m_vectUDPKeyValue[0].GetValue(), c.expected);
    EXPECT_EQ(d.m_vectUDPKeyValue[1].GetValue(), "kept");
    if (!c.apply) {
      EXPECT_TRUE(d == before);
    }
  }
  CUDPData empty;
  empty.SetMiscContractInfo("ZN", Day(2024, 6, 1), true, false);
  EXPECT_TRUE(empty.m_vectUDPKeyValue.empty());
}

}  // namespace
