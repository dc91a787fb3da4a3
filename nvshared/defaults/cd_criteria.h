// CDCRITERIA: a contract default as the hosts store it in their tables. The
// library sets its initial values, copies it, and reads one field itself,
// the gateway text; all other fields are carried for the hosts, and their
// order, widths and defaults are fixed.
//
// A plain value; one thread at a time per instance.
#ifndef NVSHARED_DEFAULTS_CD_CRITERIA_H_
#define NVSHARED_DEFAULTS_CD_CRITERIA_H_

#include <cstdint>
#include <string>

#include "nvshared/export.h"

class NVSHARED_API CDCRITERIA {
 public:
  std::string m_name;
  // A gateway's flavoured name, optionally followed by a blank and an alias
  // suffix.
  std::string m_gatewayText;
  std::int32_t m_number1 = -1;
  std::string m_text1;
  std::string m_text2;
  std::string m_text3;
  std::string m_text4;
  std::string m_text5;
  std::string m_text6;
  std::string m_text7;
  std::int32_t m_number2 = -1;
  std::int32_t m_number3 = 0;
  std::int32_t m_number4 = 0;
  std::uint8_t m_flag1 = 0;
  std::int32_t m_number5 = 0;
  // The OBO data.
  std::string m_obo1;
  std::string m_obo2;
  std::string m_obo3;
  std::uint8_t m_flags[4] = {0, 0, 0, 0};

  CDCRITERIA() = default;
  CDCRITERIA(const CDCRITERIA& other);
  CDCRITERIA& operator=(const CDCRITERIA& other);

  // Copies every field of `other`.
  void CommonCopy(const CDCRITERIA& other);

  // The flavoured name of the exchange that the gateway text's first word
  // names; "" if it names none.
  std::string GetGatewaySubstring() const;
  // The text after the gateway's flavoured name and a blank; "" if there is
  // none or the text does not hold that name.
  std::string GetAliasSuffixSubstring() const;

  // True when m_obo1 and m_obo3 are both filled; m_obo2 plays no part.
  bool HasOBO() const;
  // Empties the three OBO texts and nothing else.
  void ClearOBOData();
};

#endif  // NVSHARED_DEFAULTS_CD_CRITERIA_H_
