#include "nvshared/messaging/internal_messages.h"

#include <new>

namespace nv_opaque_ns {

InternalMessage::~InternalMessage() = default;

void ConnectMessageBlock::Transfer() {
  TransferString("m_ipAddress", m_ipAddress);
  if (GetDirection() == kRead && GetStreamVersion() == 1) {
    m_bSupportAlgo = true;
    return;
  }
  TransferScalar("m_bSupportAlgo", m_bSupportAlgo);
}

std::uint64_t ConnectMessageBlock::Measure() const {
  return 7 + m_ipAddress.size();
}

void ConnectResponseMessageBlock::Transfer() {
  TransferScalar("m_iRequestID", m_iRequestID);
  TransferString("m_ipAddress", m_ipAddress);
  TransferString("m_serverInstanceId", m_serverInstanceId);
}

std::uint64_t ConnectResponseMessageBlock::Measure() const {
  return 14 + m_ipAddress.size() + m_serverInstanceId.size();
}

void DisconnectMessageBlock::Transfer() {
  TransferScalar("m_iRequestID", m_iRequestID);
  TransferString("m_sReason", m_sReason);
}

std::uint64_t DisconnectMessageBlock::Measure() const {
  return 10 + m_sReason.size();
}

void StringMessageBlock::Transfer() {
  TransferScalar("m_iRequestID", m_iRequestID);
  TransferString("m_sMessage", m_sMessage);
}

std::uint64_t StringMessageBlock::Measure() const {
  return 10 + m_sMessage.size();
}

void CancelSubscriptionMessageBlock::Transfer() {
  TransferScalar("m_iSubscriptionRequestID", m_iSubscriptionRequestID);
}

void ServerInstanceIDResponseBlock::Transfer() {
  TransferScalar("m_iRequestID", m_iRequestID);
  TransferString("m_serverInstanceId", m_serverInstanceId);
  TransferScalar("m_bClientConnected", m_bClientConnected);
}

std::uint64_t ServerInstanceIDResponseBlock::Measure() const {
  return 13 + m_serverInstanceId.size();
}

namespace {

bool Has(const dv_core_ns::OpaqueDataMessage& message, short id) {
  return message.AgileElementExists(id);
}
bool Has(const nv_ns::dictionary& entries, short id) {
  return entries.find(id) != entries.end();
}

template <typename Block, typename Carrier>
bool TryCreate(const Carrier& carrier, InternalMessage*& result) {
  if (!Has(carrier, Block::kBlockId)) return false;
  result = new GenericMessage<Block>(carrier);
  return true;
}

template <typename Carrier>
InternalMessage* Create(const Carrier& carrier) {
  InternalMessage* result = nullptr;
  try {
    TryCreate<ConnectMessageBlock>(carrier, result) ||
        TryCreate<ConnectResponseMessageBlock>(carrier, result) ||
        TryCreate<DisconnectMessageBlock>(carrier, result) ||
        TryCreate<StringMessageBlock>(carrier, result) ||
        TryCreate<CancelSubscriptionMessageBlock>(carrier, result) ||
        TryCreate<ServerInstanceIDRequestMessageBlock>(carrier, result) ||
        TryCreate<ServerInstanceIDResponseBlock>(carrier, result);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  return result;
}

}  // namespace

InternalMessage* CreateInternalMessage(
    const dv_core_ns::OpaqueDataMessage& message) {
  return Create(message);
}

InternalMessage* CreateInternalMessage(const nv_ns::dictionary& entries) {
  return Create(entries);
}

}  // namespace nv_opaque_ns
