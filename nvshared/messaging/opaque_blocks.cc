#include "nvshared/messaging/opaque_blocks.h"

namespace nv_opaque_ns {

void OpaqueRequestMessageBlock::Transfer() {
  TransferScalar("m_bIsSubscription", m_bIsSubscription);
  TransferScalar("m_tSentTickCount", m_tSentTickCount);
  TransferScalar("m_tReceivedTickCount", m_tReceivedTickCount);
}

void OpaqueResponseMessageBlock::Transfer() {
  TransferScalar("m_iRequestID", m_iRequestID);
  TransferScalar("m_tSentTickCount", m_tSentTickCount);
  TransferScalar("m_tReceivedTickCount", m_tReceivedTickCount);
}

void ServerVersionRequestBlock::Transfer() {
  TransferString("m_szUniversalLoginName", m_szUniversalLoginName);
  TransferString("m_szApplicationId", m_szApplicationId);
  TransferString("m_szClientInfo", m_szClientInfo);
}

std::uint64_t ServerVersionRequestBlock::Measure() const {
  return 12 + m_szUniversalLoginName.size() + m_szApplicationId.size() +
         m_szClientInfo.size();
}

void EngineInfoBlock::Transfer() {
  TransferScalar("m_engineType", m_engineType);
  TransferString("m_engineVersion", m_engineVersion);
}

std::uint64_t EngineInfoBlock::Measure() const {
  return 10 + m_engineVersion.size();
}

void ServerVersionResponseBlock::Transfer() {
  TransferScalar("m_iExchangeID", m_iExchangeID);
  TransferString("m_serverId", m_serverId);
  TransferString("m_serverVersion", m_serverVersion);
  TransferString("m_engineVersion", m_engineVersion);
  TransferScalar("m_engineType", m_engineType);
  TransferString("m_serverInstanceId", m_serverInstanceId);
  TransferObjectVector("m_engineInfos", m_engineInfos);
}

std::uint64_t ServerVersionResponseBlock::Measure() const {
  std::uint64_t infos = 5;
  for (const EngineInfoBlock& info : m_engineInfos) {
    infos += kHeaderLength + info.Measure();
  }
  return 28 + m_serverId.size() + m_serverVersion.size() +
         m_engineVersion.size() + m_serverInstanceId.size() + infos;
}

void ImpersonateUserRequestBlock::Transfer() {
  TransferScalar("m_iExchangeId", m_iExchangeId);
  TransferString("m_szMember", m_szMember);
  TransferString("m_szGroup", m_szGroup);
  TransferString("m_szTrader", m_szTrader);
  TransferString("m_encryptedPassword", m_encryptedPassword);
  TransferScalar("m_iBrokerId", m_iBrokerId);
  TransferScalar("m_iCompanyId", m_iCompanyId);
  TransferScalar("m_bCanViewSingleBrokerDataOnly",
                 m_bCanViewSingleBrokerDataOnly);
  TransferScalar("m_bCanViewSingleCompanyDataOnly",
                 m_bCanViewSingleCompanyDataOnly);
}

std::uint64_t ImpersonateUserRequestBlock::Measure() const {
  return 40 + m_szMember.size() + m_szGroup.size() + m_szTrader.size() +
         m_encryptedPassword.size();
}

void SupportedExchangeResponseBlock::Transfer() {
  TransferScalar("m_nSyntheticExchangeID", m_nSyntheticExchangeID);
  TransferIntVector("m_aExchangeIDsOld", m_aExchangeIDsOld);
  TransferIntVector("m_aPrimaryExchangeIDsOld", m_aPrimaryExchangeIDsOld);
  TransferIntVector("m_aExchangeIDs", m_aExchangeIDs);
  TransferIntVector("m_aPrimaryExchangeIDs", m_aPrimaryExchangeIDs);
  TransferScalar("m_nServerSupportedFeatures", m_nServerSupportedFeatures);
  TransferIntVector("m_aMarketIDs", m_aMarketIDs);
  TransferIntVector("m_aPrimaryMarketIDs", m_aPrimaryMarketIDs);
}

std::uint64_t SupportedExchangeResponseBlock::Measure() const {
  return 36 + 4 * (m_aExchangeIDsOld.size() + m_aPrimaryExchangeIDsOld.size() +
                   m_aExchangeIDs.size() + m_aPrimaryExchangeIDs.size() +
                   m_aMarketIDs.size() + m_aPrimaryMarketIDs.size());
}

void PushMGTRequestBlock::Transfer() {
  TransferObject("m_list", m_list);
  TransferScalar("m_bDownloadAllOrders", m_bDownloadAllOrders);
}

std::uint64_t PushMGTRequestBlock::Measure() const {
  return 18 + m_list.Measure();
}

void PushMGTResponseBlock::Transfer() {
  TransferString("m_strResponse", m_strResponse);
}

std::uint64_t PushMGTResponseBlock::Measure() const {
  return 4 + m_strResponse.size();
}

}  // namespace nv_opaque_ns
