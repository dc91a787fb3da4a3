#include "nvshared/defaults/od_criteria.h"

#include <algorithm>

#include "nvshared/defaults/internal/gateway_text.h"

const std::string g_sAnyText = "*";

namespace {

template <typename T, std::size_t N>
void CopyArray(const T (&from)[N], T (&to)[N]) {
  std::copy(std::begin(from), std::end(from), to);
}

}  // namespace

ODCRITERIA::ODCRITERIA(const ODCRITERIA& other) { CommonCopy(other); }

ODCRITERIA& ODCRITERIA::operator=(const ODCRITERIA& other) {
  if (this != &other) CommonCopy(other);
  return *this;
}

void ODCRITERIA::CommonCopy(const ODCRITERIA& other) {
  m_name = other.m_name;
  m_flag1 = other.m_flag1;
  m_number1 = other.m_number1;
  m_gatewayText = other.m_gatewayText;
  m_number2 = other.m_number2;
  m_text1 = other.m_text1;
  m_number3 = other.m_number3;
  m_flag2 = other.m_flag2;
  m_number4 = other.m_number4;
  m_flag3 = other.m_flag3;
  m_number5 = other.m_number5;
  m_number6 = other.m_number6;
  m_text2 = other.m_text2;
  m_orderType = other.m_orderType;
  m_orderRestriction = other.m_orderRestriction;
  m_date.day = other.m_date.day;
  m_date.month = other.m_date.month;
  m_date.year = other.m_date.year;
  CopyArray(other.m_blockA, m_blockA);
  m_blockAWord = other.m_blockAWord;
  CopyArray(other.m_blockB, m_blockB);
  CopyArray(other.m_blockC, m_blockC);
  m_blockCWord = other.m_blockCWord;
  CopyArray(other.m_blockD, m_blockD);
  m_blockDWord = other.m_blockDWord;
  CopyArray(other.m_blockE, m_blockE);
  m_blockEWord = other.m_blockEWord;
  CopyArray(other.m_blockF, m_blockF);
  m_blockFWord = other.m_blockFWord;
  m_number7 = other.m_number7;
  m_openClose = other.m_openClose;
  m_flag4 = other.m_flag4;
  m_flag5 = other.m_flag5;
  m_wide1 = other.m_wide1;
  m_wide2 = other.m_wide2;
  CopyArray(other.m_switches, m_switches);
}

std::string ODCRITERIA::GetGatewaySubstring() const {
  return nv_defaults_internal::GatewaySubstring(m_gatewayText);
}

std::string ODCRITERIA::GetAliasSuffixSubstring() const {
  return nv_defaults_internal::AliasSuffixSubstring(m_gatewayText);
}
