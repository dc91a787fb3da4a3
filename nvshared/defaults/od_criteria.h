// ODCRITERIA: an order default as the hosts store it in their tables. The
// library sets its initial values, copies it, and reads one field itself,
// the gateway text; all other fields are carried for the hosts, and their
// order, widths and defaults are fixed.
//
// kODNoValue32 in a 32-bit field and kODNoValue16 in a 16-bit field stand
// for a field that holds no value yet.
//
// A plain value; one thread at a time per instance.
#ifndef NVSHARED_DEFAULTS_OD_CRITERIA_H_
#define NVSHARED_DEFAULTS_OD_CRITERIA_H_

#include <cstdint>
#include <string>

#include "nvshared/export.h"
#include "nvshared/platform/utils/nv_date.h"

// "*": the text that means any gateway. Built when the library is loaded.
NVSHARED_API extern const std::string g_sAnyText;

inline constexpr std::int32_t kODNoValue32 =
    static_cast<std::int32_t>(0xF0000000u);
inline constexpr std::uint16_t kODNoValue16 = 0xF000;

class NVSHARED_API ODCRITERIA {
 public:
  std::string m_name;
  std::uint8_t m_flag1 = 0;
  std::int32_t m_number1 = -1;
  // As in CDCRITERIA; "*" means any gateway. The defaults spell out the
  // text of g_sAnyText so that records built during static initialisation
  // do not depend on the order in which globals are built.
  std::string m_gatewayText = "*";
  std::int32_t m_number2 = -1;
  std::string m_text1 = "*";
  std::int32_t m_number3 = 0;
  std::uint8_t m_flag2 = 0;
  std::int32_t m_number4 = kODNoValue32;
  std::uint8_t m_flag3 = 0;
  std::int32_t m_number5 = kODNoValue32;
  std::int32_t m_number6 = kODNoValue32;
  std::string m_text2;
  // A character code: 'L', order type Limit.
  std::int32_t m_orderType = 'L';
  // A character code: ' ', no restriction.
  std::int32_t m_orderRestriction = ' ';
  nv_ns::Date m_date = nv_ns::GTD_Date;
  std::int32_t m_blockA[4] = {kODNoValue32, 0, 1, 0};
  std::uint16_t m_blockAWord = kODNoValue16;
  std::int32_t m_blockB[3] = {0, 0, 0};
  std::int32_t m_blockC[3] = {kODNoValue32, 1, 0};
  std::uint16_t m_blockCWord = kODNoValue16;
  std::int32_t m_blockD[5] = {0, kODNoValue32, 0, kODNoValue32, 1};
  std::uint16_t m_blockDWord = kODNoValue16;
  std::int32_t m_blockE[3] = {kODNoValue32, 1, 0};
  std::uint16_t m_blockEWord = kODNoValue16;
  std::int32_t m_blockF[2] = {0, 0};
  std::uint16_t m_blockFWord = kODNoValue16;
  std::int32_t m_number7 = 0;
  // A character code: 'O', Open.
  std::int32_t m_openClose = 'O';
  std::uint8_t m_flag4 = 0;
  std::uint8_t m_flag5 = 0;
  std::int64_t m_wide1 = 0;
  std::int64_t m_wide2 = 0;
  std::uint8_t m_switches[5] = {1, 1, 1, 1, 1};

  ODCRITERIA() = default;
  ODCRITERIA(const ODCRITERIA& other);
  ODCRITERIA& operator=(const ODCRITERIA& other);

  // Copies every field of `other`; of the date, its day, month and year.
  void CommonCopy(const ODCRITERIA& other);

  // As in CDCRITERIA.
  std::string GetGatewaySubstring() const;
  std::string GetAliasSuffixSubstring() const;
};

#endif  // NVSHARED_DEFAULTS_OD_CRITERIA_H_
