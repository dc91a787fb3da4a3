// CUDPData: the settings of one user-defined price column — whether it is on,
// which price it shows, how exchange prices and net changes display, and the
// bond terms (coupon, dates, day count, conversion factor) that the yield
// conversions need — with the parameters of a custom price model as a list
// of UDPKeyValue.
//
// A tagged object ("CUDPD", version 0x08000002) that also persists in the
// user's settings store (section "UserDefinedPrice"), reports itself as
// properties through nv_ns::DMUtils, and checks its bond terms with
// ValidateData. The display-name look-ups of the price enumerations are its
// static members, through its base nv_ns::UDPEnumNames.
//
// A plain value; converters keep a non-owning pointer to one, which the
// caller keeps alive. One thread at a time per record.
#ifndef NVSHARED_UDP_UDP_DATA_H_
#define NVSHARED_UDP_UDP_DATA_H_

#include <cstdint>
#include <string>
#include <vector>

#include "nvshared/export.h"
#include "nvshared/messaging/xstreamable.h"
#include "nvshared/platform/utils/dm_utils.h"
#include "nvshared/platform/utils/udp_date_time.h"
#include "nvshared/udp/udp_enums.h"
#include "nvshared/udp/udp_key_value.h"

class NVSHARED_API CUDPData : public nv_ns::XStreamable,
                              public nv_ns::UDPEnumNames {
 public:
  static constexpr char kName[kNameLength] = {'C', 'U', 'D', 'P', 'D'};
  static constexpr std::uint32_t kVersion = 0x08000002;
  // Streams below this version carry only the old price and yield codes.
  static constexpr std::uint32_t kFirstNewCodesVersion = 0x08000000;
  // The section of the user's settings store, and the version a save writes.
  static constexpr const char* kSection = "UserDefinedPrice";
  static constexpr const char* kSettingsVersion = "8.0.0.0";

  // All four dates are today; the rest as declared below.
  CUDPData();
  CUDPData(const CUDPData&) = default;
  CUDPData& operator=(const CUDPData&) = default;
  virtual ~CUDPData() = default;

  // Items in nine groups: flags and coupon frequency, the four dates as
  // month, day, year, the terms, the old price and yield codes, the newer
  // fields, the key-values. Below version 0x08000000 the old codes read
  // replace the price and yield types.
  void Transfer() override;
  // 196 plus the custom model's name, plus 352 for each key-value.
  std::uint64_t Measure() const override;

  // Checks the bond terms; the first failure decides: 1 settlement not
  // before maturity or not after now, 2 conversion factor outside 0.1..5.0
  // (both included). Only with optional settings: 4, 6, 3, 5, then the first
  // coupon's place on the coupon calendar (0, 5, 7 or 8). A date that the
  // calendar cannot hold (before 1400) raises std::out_of_range from that
  // last step. The record is not changed.
  nv_ns::UDPValidationErrorCodes ValidateData() const;

  // Every field, the key-values item by item.
  bool operator==(const CUDPData& other) const;
  bool operator!=(const CUDPData& other) const { return !(*this == other); }
  // Negative, zero or positive at the first difference. Key-value lists are
  // compared by their counts only, so records that compare 0 may still be
  // unequal under operator==.
  int CompareTo(const CUDPData& other) const;

  // Loads from (true) or saves to (false) the user's settings store. A load
  // reads each key with the field's value as default, assigns the custom
  // model's name only at the end, and migrates old price and yield codes
  // when the store holds no "UDP Version". A save writes "UDP Version"
  // "8.0.0.0". The dates, PV01 and key-values are not stored. 1 when done,
  // 0 after any exception from the store.
  int LoadSaveSettings(bool load);

  // Report the 25 settings as properties of the group
  // VAL_PROPERTY_GROUP_ZDT_ADVANCED, in one scope each. Nothing while
  // DMUtils::s_bDMEnabled is false.
  void GenDMDefaultProps() const;
  void GenDMGlobalProps(bool flag) const;
  void GenDMLocalProps(bool flag, const nv_ns::DMWindowInfo& window) const;

  // Take an old price or yield code and store its present equivalent: price
  // 0..3 give 1..4, anything else 5; yield 4, 6, 7, 8 give 1, 3, 4, 5,
  // anything else 2.
  void SetPre77PriceType(int oldType);
  void SetPre77YieldType(int oldType);
  static nv_ns::UDPPriceType MigratePriceType(int oldType);
  static nv_ns::UDPYieldType MigrateYieldType(int oldType);

  nv_ns::UDPDateTime GetSettlementDate() const;
  nv_ns::UDPDateTime GetMaturityDate() const;
  nv_ns::UDPDateTime GetIssueDate() const;
  nv_ns::UDPDateTime GetFirstCouponDate() const;
  nv_ns::UDPCouponFreq GetCouponFreq() const { return m_CouponFreq; }
  double GetCoupon() const { return m_dCoupon; }

  // Each stores its field; with `updateKeyValues` it also rewrites the value
  // of every key-value of the matching type and key ("Settlement Date",
  // "Maturity Date", "Issue Date" as dates; "Coupon Frequency" as string or
  // enum; "Coupon" as double), so a custom model's parameters follow the
  // bond terms. An invalid date stores -1 parts.
  void SetSettlementDate(const nv_ns::UDPDateTime& date, bool updateKeyValues);
  void SetMaturityDate(const nv_ns::UDPDateTime& date, bool updateKeyValues);
  void SetIssueDate(const nv_ns::UDPDateTime& date, bool updateKeyValues);
  void SetFirstCouponDate(const nv_ns::UDPDateTime& date);
  void SetCouponFreq(nv_ns::UDPCouponFreq freq, bool updateKeyValues);
  void SetCoupon(double coupon, bool updateKeyValues);

  // Seeds a custom model's key-values from the contract: the conversion
  // factor type from `product`, the contract date (first of the contract
  // month) and the delivery date by product rules. With `apply` false,
  // nothing. Writes only into m_vectUDPKeyValue.
  void SetMiscContractInfo(std::string product,
                           const nv_ns::UDPDateTime& contractDate, bool apply,
                           bool keepExisting);

  std::int32_t m_bEnableUDP = 0;
  std::int32_t m_bRetainUDPSetting = 0;
  std::int32_t m_bPriceFormat = 0;
  std::int32_t m_bNoHandle = 0;
  std::int32_t m_bEOMConversion = 1;
  std::uint8_t m_dtSettleDateMonth = 0;
  std::uint8_t m_dtSettleDateDay = 0;
  std::uint16_t m_dtSettleDateYear = 0;
  std::uint8_t m_dtFirstCouponMonth = 0;
  std::uint8_t m_dtFirstCouponDay = 0;
  std::uint16_t m_dtFirstCouponYear = 0;
  std::uint8_t m_dtIssueDateMonth = 0;
  std::uint8_t m_dtIssueDateDay = 0;
  std::uint16_t m_dtIssueDateYear = 0;
  std::uint8_t m_dtMaturityDateMonth = 0;
  std::uint8_t m_dtMaturityDateDay = 0;
  std::uint16_t m_dtMaturityDateYear = 0;
  double m_dConvFactor = 1.0;
  double m_dCoupon = 8.5;
  nv_ns::UDPDayCountType m_iDayCount = nv_ns::UDPDayCountType::ActualActual;
  std::int32_t m_bYTMOptionalSettings = 0;
  std::int32_t m_iDigitNumber = 10;
  std::int32_t m_iOffset = 0;
  nv_ns::UDPPriceType m_UDPriceType = nv_ns::UDPPriceType::ExchangePrice;
  nv_ns::UDPExchPriceType m_ExchPriceDisplayType =
      nv_ns::UDPExchPriceType::Decimal;
  nv_ns::UDPNetChangeType m_NetChangeDisplayType =
      nv_ns::UDPNetChangeType::Native;
  nv_ns::UDPYieldType m_YieldType = nv_ns::UDPYieldType::HundredMinusPrice;
  std::int32_t m_iDecimal = 0;
  nv_ns::UDPCouponFreq m_CouponFreq = nv_ns::UDPCouponFreq::SemiAnnual;
  std::string m_sCustomPriceModelName;
  std::int32_t m_bConvertTo365 = 0;
  double m_dStripBase = 0.0;
  double m_dPV01 = 1.0;
  std::vector<UDPKeyValue> m_vectUDPKeyValue;

 private:
  template <typename Emitter>
  void EmitProperties(const Emitter& emit) const;
  void RewriteKeyValues(UDPKeyValue::UDPType type, const char* key,
                        const std::string& value);
};

#endif  // NVSHARED_UDP_UDP_DATA_H_
