#include "nvshared/defaults/cd_criteria.h"

#include <algorithm>

#include "nvshared/defaults/internal/gateway_text.h"

CDCRITERIA::CDCRITERIA(const CDCRITERIA& other) { CommonCopy(other); }

CDCRITERIA& CDCRITERIA::operator=(const CDCRITERIA& other) {
  if (this != &other) CommonCopy(other);
  return *this;
}

void CDCRITERIA::CommonCopy(const CDCRITERIA& other) {
  m_name = other.m_name;
  m_gatewayText = other.m_gatewayText;
  m_number1 = other.m_number1;
  m_text1 = other.m_text1;
  m_text2 = other.m_text2;
  m_text3 = other.m_text3;
  m_text4 = other.m_text4;
  m_text5 = other.m_text5;
  m_text6 = other.m_text6;
  m_text7 = other.m_text7;
  m_number2 = other.m_number2;
  m_number3 = other.m_number3;
  m_number4 = other.m_number4;
  m_flag1 = other.m_flag1;
  m_number5 = other.m_number5;
  m_obo1 = other.m_obo1;
  m_obo2 = other.m_obo2;
  m_obo3 = other.m_obo3;
  std::copy(std::begin(other.m_flags), std::end(other.m_flags), m_flags);
}

std::string CDCRITERIA::GetGatewaySubstring() const {
  return nv_defaults_internal::GatewaySubstring(m_gatewayText);
}

std::string CDCRITERIA::GetAliasSuffixSubstring() const {
  return nv_defaults_internal::AliasSuffixSubstring(m_gatewayText);
}

bool CDCRITERIA::HasOBO() const { return !m_obo1.empty() && !m_obo3.empty(); }

void CDCRITERIA::ClearOBOData() {
  m_obo1.clear();
  m_obo2.clear();
  m_obo3.clear();
}
