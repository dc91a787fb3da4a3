#include "nvshared/messaging/impersonation_data.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace nv_opaque_ns {

ImpersonationData::~ImpersonationData() = default;

int ImpersonationData::Compare(const ImpersonationData& other) const {
  if (this == &other) return 0;
  if (m_iBrokerId != other.m_iBrokerId ||
      m_iExchangeId != other.m_iExchangeId) {
    const bool greater = m_iBrokerId != other.m_iBrokerId
                             ? m_iBrokerId > other.m_iBrokerId
                             : m_iExchangeId > other.m_iExchangeId;
    return greater ? 1 : -1;
  }
  for (const auto member :
       {&ImpersonationData::m_szMember, &ImpersonationData::m_szGroup,
        &ImpersonationData::m_szTrader, &ImpersonationData::m_szUserName}) {
    const int order =
        std::strcmp((this->*member).c_str(), (other.*member).c_str());
    if (order != 0) return order;
  }
  // Company, MGT id and caretaker give 1 or 0, never -1: this record's being
  // the greater reads as equal. Deliberate; callers' orderings depend on it.
  if (m_companyId != other.m_companyId) {
    return m_companyId < other.m_companyId ? 1 : 0;
  }
  if (m_canViewSingleBrokerDataOnly != other.m_canViewSingleBrokerDataOnly) {
    return m_canViewSingleBrokerDataOnly ? 1 : -1;
  }
  if (m_canViewSingleCompanyDataOnly != other.m_canViewSingleCompanyDataOnly) {
    return m_canViewSingleCompanyDataOnly ? 1 : -1;
  }
  if (m_mgtId != other.m_mgtId) return m_mgtId < other.m_mgtId ? 1 : 0;
  if (m_nCaretakerID != other.m_nCaretakerID) {
    return m_nCaretakerID < other.m_nCaretakerID ? 1 : 0;
  }
  return 0;
}

namespace {
// The fewest bytes an element's exchange, member, group and trader take.
constexpr std::int64_t kLeastElementBytes = 6 + 3 * 4;
}  // namespace

void ImpersonationDataStreamableList::Transfer() {
  const std::int32_t direction = GetDirection();
  if (direction != kWrite && direction != kRead) return;
  const bool reading = direction == kRead;

  int count = static_cast<int>(size());
  if (reading) count = 0;
  TransferScalar("nSize", count);

  // Layer 2 creates the elements. A count is trusted only as far as the
  // bytes left could hold that many elements: a larger one raises Buffer
  // Underflow here instead of appending elements without bytes behind them.
  // An older writer's object that ends right after the count holds none.
  if (reading) {
    if (count > 0 && !HasFailed() && CheckRead(kLeastElementBytes * count)) {
      for (int i = 0; i < count; ++i) {
        ImpersonationData element;
        TransferScalar("temp", element.m_iExchangeId);
        TransferString("impersonationData.m_szMember", element.m_szMember);
        TransferString("impersonationData.m_szGroup", element.m_szGroup);
        TransferString("impersonationData.m_szTrader", element.m_szTrader);
        push_back(std::move(element));
      }
    }
  } else {
    for (ImpersonationData& element : *this) {
      int temp = element.m_iExchangeId;
      TransferScalar("temp", temp);
      TransferString("impersonationData.m_szMember", element.m_szMember);
      TransferString("impersonationData.m_szGroup", element.m_szGroup);
      TransferString("impersonationData.m_szTrader", element.m_szTrader);
    }
  }

  TransferString("m_userName", m_userName);

  for (ImpersonationData& element : *this) {
    TransferString("impersonationData.m_szEncryptedPassword",
                   element.m_szEncryptedPassword);
  }
  for (ImpersonationData& element : *this) {
    TransferString("impersonationData.m_szUserName", element.m_szUserName);
    if (reading && element.m_szUserName.empty()) {
      element.m_szUserName = m_userName;
    }
  }
  for (ImpersonationData& element : *this) {
    int temp = element.m_iBrokerId;
    if (TransferScalar("temp", temp) && reading) {
      element.m_iBrokerId = static_cast<unsigned short>(temp);
    }
    TransferScalar("impersonationData.m_companyId", element.m_companyId);
    TransferScalar("impersonationData.m_canViewSingleBrokerDataOnly",
                   element.m_canViewSingleBrokerDataOnly);
    TransferScalar("impersonationData.m_canViewSingleCompanyDataOnly",
                   element.m_canViewSingleCompanyDataOnly);
    TransferScalar("impersonationData.m_mgtId", element.m_mgtId);
  }
  for (ImpersonationData& element : *this) {
    TransferScalar("impersonationData.m_nCaretakerID", element.m_nCaretakerID);
  }
}

std::uint64_t ImpersonationDataStreamableList::Measure() const {
  std::uint64_t total = 10 + m_userName.size();
  for (const ImpersonationData& e : *this) {
    total += 56 + e.m_szMember.size() + e.m_szGroup.size() +
             e.m_szTrader.size() + e.m_szEncryptedPassword.size() +
             e.m_szUserName.size();
  }
  return total;
}

}  // namespace nv_opaque_ns
