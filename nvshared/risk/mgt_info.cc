#include "nvshared/risk/mgt_info.h"

#include <cstring>

namespace nv_ns {
namespace {

// Copies `text` into `out` of `size` bytes, cut to fit, NUL-terminated.
// Returns the number of characters written.
std::size_t CopyCut(const char* text, char* out, std::size_t size) {
  std::size_t n = text == nullptr ? 0 : strnlen(text, size - 1);
  std::memcpy(out, text == nullptr ? "" : text, n);
  out[n] = '\0';
  return n;
}

}  // namespace

MGTInfo::MGTInfo(const char* member, const char* group, const char* trader) {
  Set(member, group, trader);
}

MGTInfo& MGTInfo::operator=(const MGTInfo& other) {
  if (this == &other) return *this;
  Set(other.m_memberId, other.m_groupId, other.m_mgtTraderId);
  m_assignedGateways = other.m_assignedGateways;
  return *this;
}

void MGTInfo::Set(const char* member, const char* group, const char* trader) {
  CopyCut(member, m_memberId, sizeof m_memberId);
  CopyCut(group, m_groupId, sizeof m_groupId);
  CopyCut(trader, m_mgtTraderId, sizeof m_mgtTraderId);
  // The parts fit the key: 11 + 3 + 11 characters and a NUL.
  std::size_t n = std::strlen(m_memberId);
  std::memcpy(m_traderKey, m_memberId, n);
  std::size_t g = std::strlen(m_groupId);
  std::memcpy(m_traderKey + n, m_groupId, g);
  n += g;
  CopyCut(m_mgtTraderId, m_traderKey + n, sizeof m_traderKey - n);
}

void MGTInfo::Clear() {
  m_traderKey[0] = m_memberId[0] = m_groupId[0] = m_mgtTraderId[0] = '\0';
  m_assignedGateways.clear();
}

bool MGTInfo::operator==(const MGTInfo& other) const {
  return std::strcmp(m_traderKey, other.m_traderKey) == 0;
}

bool MGTInfo::operator<(const MGTInfo& other) const {
  return std::strcmp(m_traderKey, other.m_traderKey) < 0;
}

MGTUserRecord::MGTUserRecord(const MGTInfo& mgt)
    : m_fromMgtInfo(true), m_mgt(mgt) {}

MGTUserRecord& MGTUserRecord::operator=(const MGTUserRecord& other) {
  if (this == &other) return *this;
  m_fromMgtInfo = other.m_fromMgtInfo;
  m_mgt = other.m_mgt;
  return *this;
}

}  // namespace nv_ns
