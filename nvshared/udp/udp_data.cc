#include "nvshared/udp/udp_data.h"

#include <cstring>
#include <sstream>

#include "nvshared/platform/utils/registry_mgr.h"
#include "nvshared/udp/internal/coupon_calendar.h"
#include "nvshared/udp/udp_ytm_calc.h"

using nv_ns::DMUtils;
using nv_ns::UDPDateTime;

namespace {

constexpr unsigned long kLocale = UDPDateTime::kUserDefaultLocale;

// The codes that writers before version 0x08000000 used, still written for
// old readers.
std::int32_t OldPriceCode(std::int32_t type) {
  switch (type) {
    case 2:
      return 1;
    case 3:
      return 2;
    case 4:
      return 3;
    default:
      return 0;
  }
}

std::int32_t OldYieldCode(std::int32_t type) {
  return type >= 1 && type <= 5 ? type + 3 : 0;
}

UDPDateTime MakeDate(int year, int month, int day) {
  return UDPDateTime(year, month, day, 0, 0, 0);
}

template <typename Month, typename Day, typename Year>
void StoreDate(const UDPDateTime& date, Month& month, Day& day, Year& year) {
  // An invalid date answers -1, which the narrow fields keep as their
  // largest value; ValidateData refuses such a date.
  month = static_cast<Month>(date.GetMonth());
  day = static_cast<Day>(date.GetDay());
  year = static_cast<Year>(date.GetYear());
}

int Normalised(std::int32_t flag) { return flag != 0 ? 1 : 0; }

// Sign of a - b; a NaN difference counts as greater.
int CompareDoubles(double a, double b) {
  const double d = a - b;
  if (d < 0.0) return -1;
  if (d > 0.0) return 1;
  return d == 0.0 ? 0 : 1;
}

}  // namespace

CUDPData::CUDPData() : XStreamable(kName, kVersion) {
  const UDPDateTime today = UDPDateTime::GetTickCount();
  StoreDate(today, m_dtSettleDateMonth, m_dtSettleDateDay, m_dtSettleDateYear);
  StoreDate(today, m_dtFirstCouponMonth, m_dtFirstCouponDay,
            m_dtFirstCouponYear);
  StoreDate(today, m_dtIssueDateMonth, m_dtIssueDateDay, m_dtIssueDateYear);
  StoreDate(today, m_dtMaturityDateMonth, m_dtMaturityDateDay,
            m_dtMaturityDateYear);
}

// ---------------------------------------------------------------------------
// Streaming.

void CUDPData::Transfer() {
  TransferScalar("m_bEnableUDP", m_bEnableUDP);
  TransferScalar("m_bRetainUDPSetting", m_bRetainUDPSetting);
  TransferScalar("m_bPriceFormat", m_bPriceFormat);
  TransferScalar("m_bNoHandle", m_bNoHandle);
  TransferScalar("m_bEOMConversion", m_bEOMConversion);
  TransferScalar("m_CouponFreq", m_CouponFreq.m_iValue);

  TransferScalar("m_dtSettleDateMonth", m_dtSettleDateMonth);
  TransferScalar("m_dtSettleDateDay", m_dtSettleDateDay);
  TransferScalar("m_dtSettleDateYear", m_dtSettleDateYear);
  TransferScalar("m_dtFirstCouponMonth", m_dtFirstCouponMonth);
  TransferScalar("m_dtFirstCouponDay", m_dtFirstCouponDay);
  TransferScalar("m_dtFirstCouponYear", m_dtFirstCouponYear);
  TransferScalar("m_dtIssueDateMonth", m_dtIssueDateMonth);
  TransferScalar("m_dtIssueDateDay", m_dtIssueDateDay);
  TransferScalar("m_dtIssueDateYear", m_dtIssueDateYear);
  TransferScalar("m_dtMaturityDateMonth", m_dtMaturityDateMonth);
  TransferScalar("m_dtMaturityDateDay", m_dtMaturityDateDay);
  TransferScalar("m_dtMaturityDateYear", m_dtMaturityDateYear);

  TransferScalar("m_dConvFactor", m_dConvFactor);
  TransferScalar("m_dCoupon", m_dCoupon);
  TransferScalar("m_iDayCount", m_iDayCount.m_iValue);
  TransferScalar("m_iDigitNumber", m_iDigitNumber);
  TransferScalar("m_iOffset", m_iOffset);

  // The old codes are no fields: they are derived on write, and on read
  // they matter only for streams older than the new codes.
  std::int32_t oldPriceType = OldPriceCode(m_UDPriceType);
  std::int32_t oldYieldType = OldYieldCode(m_YieldType);
  const bool readOldPrice = TransferScalar("oldUDPriceType", oldPriceType);
  TransferScalar("m_NetChangeDisplayType", m_NetChangeDisplayType.m_iValue);
  const bool readOldYield = TransferScalar("oldYieldType", oldYieldType);
  TransferScalar("m_iDecimal", m_iDecimal);
  TransferScalar("m_bYTMOptionalSettings", m_bYTMOptionalSettings);

  TransferString("m_sCustomPriceModelName", m_sCustomPriceModelName);
  TransferScalar("m_bConvertTo365", m_bConvertTo365);
  TransferScalar("m_dStripBase", m_dStripBase);
  TransferScalar("m_ExchPriceDisplayType", m_ExchPriceDisplayType.m_iValue);
  TransferScalar("m_UDPriceType", m_UDPriceType.m_iValue);
  TransferScalar("m_YieldType", m_YieldType.m_iValue);
  TransferScalar("m_dPV01", m_dPV01);

  TransferObjectVector("m_vectUDPKeyValue", m_vectUDPKeyValue);

  if (GetDirection() == kRead && GetStreamVersion() < kFirstNewCodesVersion) {
    if (readOldPrice) SetPre77PriceType(oldPriceType);
    if (readOldYield) SetPre77YieldType(oldYieldType);
  }
}

std::uint64_t CUDPData::Measure() const {
  return 196 + m_sCustomPriceModelName.size() +
         352 * static_cast<std::uint64_t>(m_vectUDPKeyValue.size());
}

// ---------------------------------------------------------------------------
// Old codes.

nv_ns::UDPPriceType CUDPData::MigratePriceType(int oldType) {
  return oldType >= 0 && oldType <= 3 ? oldType + 1
                                      : nv_ns::UDPPriceType::ExchangePrice;
}

nv_ns::UDPYieldType CUDPData::MigrateYieldType(int oldType) {
  switch (oldType) {
    case 4:
      return nv_ns::UDPYieldType::NoConversion;
    case 6:
      return nv_ns::UDPYieldType::TenThousandMinusPrice;
    case 7:
      return nv_ns::UDPYieldType::TenThousandMinusPriceAndStripBase;
    case 8:
      return nv_ns::UDPYieldType::HundredThousandMinusPrice;
    default:
      return nv_ns::UDPYieldType::HundredMinusPrice;
  }
}

void CUDPData::SetPre77PriceType(int oldType) {
  m_UDPriceType = MigratePriceType(oldType);
}

void CUDPData::SetPre77YieldType(int oldType) {
  m_YieldType = MigrateYieldType(oldType);
}

// ---------------------------------------------------------------------------
// Checks and comparisons.

nv_ns::UDPValidationErrorCodes CUDPData::ValidateData() const {
  using Codes = nv_ns::UDPValidationErrorCodes;
  const UDPDateTime settlement = GetSettlementDate();
  const UDPDateTime maturity = GetMaturityDate();
  const UDPDateTime firstCoupon = GetFirstCouponDate();
  const UDPDateTime issue = GetIssueDate();

  // Settlement at midnight today is already in the past: refused.
  if (!(settlement < maturity && settlement > UDPDateTime::GetTickCount())) {
    return Codes::SettlementDate;
  }
  // 5.0 passes here although the calculator refuses it; hosts show the
  // calculator's refusal later, so the two bounds stay apart on purpose.
  if (!(m_dConvFactor >= 0.1 && m_dConvFactor <= 5.0)) {
    return Codes::ConversionFactor;
  }
  if (m_bYTMOptionalSettings == 0) return Codes::Valid;
  if (issue.GetSerial() >= firstCoupon.GetSerial()) {
    return Codes::IssueDateNotBeforeFirstCoupon;
  }
  if (firstCoupon.GetSerial() >= maturity.GetSerial()) {
    return Codes::FirstCouponDateNotBeforeMaturity;
  }
  if (issue.GetStatus() != UDPDateTime::valid) return Codes::IssueDateInvalid;
  if (firstCoupon.GetStatus() != UDPDateTime::valid) {
    return Codes::FirstCouponDateInvalid;
  }
  // Dates outside the calendar raise std::out_of_range here, for the caller.
  (void)nv_ns::udp_internal::ToCalendarDate(maturity);
  (void)nv_ns::udp_internal::ToCalendarDate(firstCoupon);
  (void)nv_ns::udp_internal::ToCalendarDate(issue);
  // A zero frequency would divide by zero here; the calculator's check
  // instead finds no calendar and answers 8.
  return CUDPYTMCalc::IsValidFirstCouponDate(
      issue, firstCoupon, maturity, m_CouponFreq, m_bEOMConversion != 0);
}

bool CUDPData::operator==(const CUDPData& o) const {
  return m_bEnableUDP == o.m_bEnableUDP &&
         m_bRetainUDPSetting == o.m_bRetainUDPSetting &&
         m_bPriceFormat == o.m_bPriceFormat && m_bNoHandle == o.m_bNoHandle &&
         m_bEOMConversion == o.m_bEOMConversion &&
         m_dtSettleDateMonth == o.m_dtSettleDateMonth &&
         m_dtSettleDateDay == o.m_dtSettleDateDay &&
         m_dtSettleDateYear == o.m_dtSettleDateYear &&
         m_dtFirstCouponMonth == o.m_dtFirstCouponMonth &&
         m_dtFirstCouponDay == o.m_dtFirstCouponDay &&
         m_dtFirstCouponYear == o.m_dtFirstCouponYear &&
         m_dtIssueDateMonth == o.m_dtIssueDateMonth &&
         m_dtIssueDateDay == o.m_dtIssueDateDay &&
         m_dtIssueDateYear == o.m_dtIssueDateYear &&
         m_dtMaturityDateMonth == o.m_dtMaturityDateMonth &&
         m_dtMaturityDateDay == o.m_dtMaturityDateDay &&
         m_dtMaturityDateYear == o.m_dtMaturityDateYear &&
         m_dConvFactor == o.m_dConvFactor && m_dCoupon == o.m_dCoupon &&
         m_iDayCount == o.m_iDayCount &&
         m_bYTMOptionalSettings == o.m_bYTMOptionalSettings &&
         m_iDigitNumber == o.m_iDigitNumber && m_iOffset == o.m_iOffset &&
         m_UDPriceType == o.m_UDPriceType &&
         m_ExchPriceDisplayType == o.m_ExchPriceDisplayType &&
         m_NetChangeDisplayType == o.m_NetChangeDisplayType &&
         m_YieldType == o.m_YieldType && m_iDecimal == o.m_iDecimal &&
         m_CouponFreq == o.m_CouponFreq &&
         m_sCustomPriceModelName == o.m_sCustomPriceModelName &&
         m_bConvertTo365 == o.m_bConvertTo365 &&
         m_dStripBase == o.m_dStripBase && m_dPV01 == o.m_dPV01 &&
         m_vectUDPKeyValue == o.m_vectUDPKeyValue;
}

int CUDPData::CompareTo(const CUDPData& o) const {
  const std::int32_t flags[] = {m_bEnableUDP, m_bRetainUDPSetting,
                                m_bPriceFormat, m_bNoHandle, m_bEOMConversion};
  const std::int32_t otherFlags[] = {o.m_bEnableUDP, o.m_bRetainUDPSetting,
                                     o.m_bPriceFormat, o.m_bNoHandle,
                                     o.m_bEOMConversion};
  for (int i = 0; i < 5; ++i) {
    if (int d = Normalised(flags[i]) - Normalised(otherFlags[i])) return d;
  }
  const int dates[] = {
      m_dtSettleDateMonth,   m_dtSettleDateDay,   m_dtSettleDateYear,
      m_dtFirstCouponMonth,  m_dtFirstCouponDay,  m_dtFirstCouponYear,
      m_dtIssueDateMonth,    m_dtIssueDateDay,    m_dtIssueDateYear,
      m_dtMaturityDateMonth, m_dtMaturityDateDay, m_dtMaturityDateYear};
  const int otherDates[] = {
      o.m_dtSettleDateMonth,   o.m_dtSettleDateDay,   o.m_dtSettleDateYear,
      o.m_dtFirstCouponMonth,  o.m_dtFirstCouponDay,  o.m_dtFirstCouponYear,
      o.m_dtIssueDateMonth,    o.m_dtIssueDateDay,    o.m_dtIssueDateYear,
      o.m_dtMaturityDateMonth, o.m_dtMaturityDateDay, o.m_dtMaturityDateYear};
  for (int i = 0; i < 12; ++i) {
    if (int d = dates[i] - otherDates[i]) return d;
  }
  if (int d = CompareDoubles(m_dConvFactor, o.m_dConvFactor)) return d;
  if (int d = CompareDoubles(m_dCoupon, o.m_dCoupon)) return d;
  // Differences of int32 values, as the record always compared them; values
  // far apart may wrap, so they are taken in 64 bits and clamped to a sign.
  auto diff = [](std::int32_t a, std::int32_t b) {
    const std::int64_t d = std::int64_t{a} - b;
    return d < 0 ? -1 : (d > 0 ? 1 : 0);
  };
  if (int d = diff(m_iDayCount, o.m_iDayCount)) return d;
  if (int d = Normalised(m_bYTMOptionalSettings) -
              Normalised(o.m_bYTMOptionalSettings)) {
    return d;
  }
  const std::int32_t ints[] = {m_iDigitNumber,
                               m_iOffset,
                               m_UDPriceType,
                               m_ExchPriceDisplayType,
                               m_NetChangeDisplayType,
                               m_YieldType,
                               m_iDecimal,
                               m_CouponFreq};
  const std::int32_t otherInts[] = {o.m_iDigitNumber,
                                    o.m_iOffset,
                                    o.m_UDPriceType,
                                    o.m_ExchPriceDisplayType,
                                    o.m_NetChangeDisplayType,
                                    o.m_YieldType,
                                    o.m_iDecimal,
                                    o.m_CouponFreq};
  for (int i = 0; i < 8; ++i) {
    if (int d = diff(ints[i], otherInts[i])) return d;
  }
  // As C strings: an embedded NUL ends the comparison.
  if (int d = std::strcmp(m_sCustomPriceModelName.c_str(),
                          o.m_sCustomPriceModelName.c_str())) {
    return d < 0 ? -1 : 1;
  }
  if (int d = Normalised(m_bConvertTo365) - Normalised(o.m_bConvertTo365)) {
    return d;
  }
  if (int d = CompareDoubles(m_dStripBase, o.m_dStripBase)) return d;
  if (int d = CompareDoubles(m_dPV01, o.m_dPV01)) return d;
  // The lists are compared by their lengths alone, deliberately: hosts use
  // CompareTo to detect a change of bond terms, not of model parameters.
  return static_cast<int>(m_vectUDPKeyValue.size()) -
         static_cast<int>(o.m_vectUDPKeyValue.size());
}

// ---------------------------------------------------------------------------
// The settings store.

int CUDPData::LoadSaveSettings(bool load) {
  try {
    CRegistryMgr& store = CRegistryMgr::Instance(CRegistryMgr::kUser);
    auto intKey = [&](const char* key, std::int32_t& field) {
      if (load) {
        field = store.ReadRegInt(kSection, key, field, CRegistryMgr::kUser,
                                 nullptr);
      } else {
        store.WriteRegInt(kSection, key, field);
      }
    };
    auto doubleKey = [&](const char* key, double& field) {
      store.ReadWriteRegDouble(load, kSection, key, field, CRegistryMgr::kUser);
    };
    // A load fills a local copy and assigns the name only once every key
    // has been read, so a load that fails halfway keeps the old name.
    std::string modelName = load ? std::string() : m_sCustomPriceModelName;

    intKey("UDP Enable User Defined Price Column", m_bEnableUDP);
    intKey("UDP Retain settings ", m_bRetainUDPSetting);  // trailing blank
    intKey("UDP Price Format", m_bPriceFormat);
    intKey("UDP No Handle", m_bNoHandle);
    intKey("UDP EOM Conversion", m_bEOMConversion);
    intKey("UDP Coupon Freq", m_CouponFreq.m_iValue);
    doubleKey("UDP Conversion Factor", m_dConvFactor);
    doubleKey("UDP Coupon", m_dCoupon);
    intKey("UDP Day Count", m_iDayCount.m_iValue);
    intKey("UDP Digit Num", m_iDigitNumber);
    intKey("UDP Net Change Offset", m_iOffset);
    intKey("UDP Type", m_UDPriceType.m_iValue);
    store.ReadWriteRegString(load, kSection, "UDP Custom Price Model Name",
                             modelName, CRegistryMgr::kUser);
    intKey("UDP Exchange Price Type", m_ExchPriceDisplayType.m_iValue);
    intKey("UDP Net Change Type", m_NetChangeDisplayType.m_iValue);
    intKey("UDP Yield Type", m_YieldType.m_iValue);
    doubleKey("UDP Strip Base", m_dStripBase);
    intKey("UDP Decimal", m_iDecimal);
    intKey("UDP Use YTM Optional Settings", m_bYTMOptionalSettings);
    intKey("UDP Convert to 365 Day Year", m_bConvertTo365);

    if (load) {
      m_sCustomPriceModelName = modelName;
      // Stores written before the version key hold the old codes.
      if (!store.ExistRegValue(kSection, "UDP Version")) {
        SetPre77PriceType(m_UDPriceType);
        SetPre77YieldType(m_YieldType);
      }
    } else {
      store.WriteRegString(kSection, "UDP Version", kSettingsVersion);
    }
    return 1;
  } catch (...) {
    return 0;
  }
}

// ---------------------------------------------------------------------------
// Property reports.

namespace {

struct DefaultEmitter {
  void String(const std::string& g, const std::string& k,
              const std::string& v) const {
    DMUtils::GenDMDefaultProps(g, k, v);
  }
  void Bool(const std::string& g, const std::string& k, bool v) const {
    DMUtils::GenDMDefaultPropsBool(g, k, v);
  }
  void Int(const std::string& g, const std::string& k, int v) const {
    DMUtils::GenDMDefaultPropsInt(g, k, v);
  }
  void Double(const std::string& g, const std::string& k, double v) const {
    DMUtils::GenDMDefaultPropsDouble(g, k, v);
  }
};

struct GlobalEmitter {
  bool flag;
  void String(const std::string& g, const std::string& k,
              const std::string& v) const {
    DMUtils::GenDMGlobalProps(flag, g, k, v);
  }
  void Bool(const std::string& g, const std::string& k, bool v) const {
    DMUtils::GenDMGlobalPropsBool(flag, g, k, v);
  }
  void Int(const std::string& g, const std::string& k, int v) const {
    DMUtils::GenDMGlobalPropsInt(flag, g, k, v);
  }
  void Double(const std::string& g, const std::string& k, double v) const {
    DMUtils::GenDMGlobalPropsDouble(flag, g, k, v);
  }
};

struct LocalEmitter {
  bool flag;
  const nv_ns::DMWindowInfo& window;
  void String(const std::string& g, const std::string& k,
              const std::string& v) const {
    DMUtils::GenDMLocalProps(flag, window, g, k, v);
  }
  void Bool(const std::string& g, const std::string& k, bool v) const {
    DMUtils::GenDMLocalPropsBool(flag, window, g, k, v);
  }
  void Int(const std::string& g, const std::string& k, int v) const {
    DMUtils::GenDMLocalPropsInt(flag, window, g, k, v);
  }
  void Double(const std::string& g, const std::string& k, double v) const {
    DMUtils::GenDMLocalPropsDouble(flag, window, g, k, v);
  }
};

}  // namespace

template <typename Emitter>
void CUDPData::EmitProperties(const Emitter& emit) const {
  if (!DMUtils::s_bDMEnabled) return;
  const std::string group = nv_ns::VAL_PROPERTY_GROUP_ZDT_ADVANCED;
  emit.Bool(group, "UDP Enable User Defined Price Column", m_bEnableUDP != 0);
  emit.Bool(group, "UDP Retain settings ", m_bRetainUDPSetting != 0);
  emit.Bool(group, "UDP Price Format", m_bPriceFormat != 0);
  emit.Bool(group, "UDP No Handle", m_bNoHandle != 0);
  emit.Bool(group, "UDP EOM Conversion", m_bEOMConversion != 0);
  emit.String(group, "UDP Coupon Freq", GetCouponFreqString(m_CouponFreq));
  emit.Double(group, "UDP Conversion Factor", m_dConvFactor);
  emit.Double(group, "UDP Coupon", m_dCoupon);
  emit.String(group, "UDP Day Count", GetDayCountTypeString(m_iDayCount));
  emit.Int(group, "UDP Digit Num", m_iDigitNumber);
  emit.Int(group, "UDP Net Change Offset", m_iOffset);
  emit.String(group, "UDP Type", GetPriceTypeNameEx(m_UDPriceType));
  emit.String(group, "UDP Custom Price Model Name", m_sCustomPriceModelName);
  emit.String(group, "UDP Exchange Price Type",
              GetPriceTypeName(m_ExchPriceDisplayType));
  emit.String(group, "UDP Net Change Type",
              GetPriceTypeName(m_NetChangeDisplayType));
  emit.String(group, "UDP Yield Type", GetPriceTypeName(m_YieldType));
  emit.Double(group, "UDP Strip Base", m_dStripBase);
  emit.Int(group, "UDP Decimal", m_iDecimal);
  emit.Bool(group, "UDP Use YTM Optional Settings",
            m_bYTMOptionalSettings != 0);
  emit.String(group, "UDP Settle Date", GetSettlementDate().Format(0, kLocale));
  emit.String(group, "UDP Maturity Date", GetMaturityDate().Format(0, kLocale));
  emit.String(group, "UDP First Coupon Date",
              GetFirstCouponDate().Format(0, kLocale));
  emit.String(group, "UDP Issue Date", GetIssueDate().Format(0, kLocale));
  emit.Bool(group, "UDP Convert to 365 Day Year", m_bConvertTo365 != 0);
  emit.String(group, "UDP Version", kSettingsVersion);
}

void CUDPData::GenDMDefaultProps() const { EmitProperties(DefaultEmitter{}); }

void CUDPData::GenDMGlobalProps(bool flag) const {
  EmitProperties(GlobalEmitter{flag});
}

void CUDPData::GenDMLocalProps(bool flag,
                               const nv_ns::DMWindowInfo& window) const {
  EmitProperties(LocalEmitter{flag, window});
}

// ---------------------------------------------------------------------------
// Dates and setters.

UDPDateTime CUDPData::GetSettlementDate() const {
  return MakeDate(m_dtSettleDateYear, m_dtSettleDateMonth, m_dtSettleDateDay);
}

UDPDateTime CUDPData::GetMaturityDate() const {
  return MakeDate(m_dtMaturityDateYear, m_dtMaturityDateMonth,
                  m_dtMaturityDateDay);
}

UDPDateTime CUDPData::GetIssueDate() const {
  return MakeDate(m_dtIssueDateYear, m_dtIssueDateMonth, m_dtIssueDateDay);
}

UDPDateTime CUDPData::GetFirstCouponDate() const {
  return MakeDate(m_dtFirstCouponYear, m_dtFirstCouponMonth,
                  m_dtFirstCouponDay);
}

void CUDPData::RewriteKeyValues(UDPKeyValue::UDPType type, const char* key,
                                const std::string& value) {
  for (UDPKeyValue& item : m_vectUDPKeyValue) {
    if (item.GetTypeEnum() == type && item.GetKey() == key) {
      item.SetValue(value);
    }
  }
}

void CUDPData::SetSettlementDate(const UDPDateTime& date,
                                 bool updateKeyValues) {
  StoreDate(date, m_dtSettleDateMonth, m_dtSettleDateDay, m_dtSettleDateYear);
  if (updateKeyValues) {
    RewriteKeyValues(UDPKeyValue::eDate, "Settlement Date",
                     date.Format(0, kLocale));
  }
}

void CUDPData::SetMaturityDate(const UDPDateTime& date, bool updateKeyValues) {
  StoreDate(date, m_dtMaturityDateMonth, m_dtMaturityDateDay,
            m_dtMaturityDateYear);
  if (updateKeyValues) {
    RewriteKeyValues(UDPKeyValue::eDate, "Maturity Date",
                     date.Format(0, kLocale));
  }
}

void CUDPData::SetIssueDate(const UDPDateTime& date, bool updateKeyValues) {
  StoreDate(date, m_dtIssueDateMonth, m_dtIssueDateDay, m_dtIssueDateYear);
  if (updateKeyValues) {
    RewriteKeyValues(UDPKeyValue::eDate, "Issue Date", date.Format(0, kLocale));
  }
}

void CUDPData::SetFirstCouponDate(const UDPDateTime& date) {
  StoreDate(date, m_dtFirstCouponMonth, m_dtFirstCouponDay,
            m_dtFirstCouponYear);
}

void CUDPData::SetCouponFreq(nv_ns::UDPCouponFreq freq, bool updateKeyValues) {
  m_CouponFreq = freq;
  if (updateKeyValues) {
    const std::string& text = GetCouponFreqString(freq);
    RewriteKeyValues(UDPKeyValue::eString, "Coupon Frequency", text);
    RewriteKeyValues(UDPKeyValue::eEnum, "Coupon Frequency", text);
  }
}

void CUDPData::SetCoupon(double coupon, bool updateKeyValues) {
  m_dCoupon = coupon;
  if (updateKeyValues) {
    std::ostringstream text;  // default format: six significant digits
    text << coupon;
    RewriteKeyValues(UDPKeyValue::eDouble, "Coupon", text.str());
  }
}
