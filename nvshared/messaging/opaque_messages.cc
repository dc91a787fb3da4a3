#include "nvshared/messaging/opaque_messages.h"

#include <cstring>
#include <new>

namespace nv_opaque_ns {

using nv_ns::AgileStreamable;
using nv_ns::DictionaryStreamable;

OpaqueRequestMessage::OpaqueRequestMessage(const OpaqueDataMessage& message) {
  if (message.AgileElementExists(kBlockId)) {
    AgileStreamable::RetrieveAgile(message, m_baseBlock,
                                   nv_ns::kOpaqueRequestMessageId);
  }
}

OpaqueRequestMessage::OpaqueRequestMessage(const dictionary& entries) {
  DictionaryStreamable::RetrieveDictionaryData(entries, m_baseBlock, kBlockId);
}

OpaqueRequestMessage::~OpaqueRequestMessage() = default;

void OpaqueRequestMessage::SaveToMessage(OpaqueDataMessage& message) {
  AgileStreamable::StoreAgile(message, m_baseBlock,
                              nv_ns::kOpaqueRequestMessageId);
}

void OpaqueRequestMessage::SaveToDictionary(dictionary& entries) {
  DictionaryStreamable::StoreDictionaryData(entries, m_baseBlock, kBlockId);
}

OpaqueResponseMessage::OpaqueResponseMessage(const OpaqueDataMessage& message) {
  if (message.AgileElementExists(kBlockId)) {
    AgileStreamable::RetrieveAgile(message, m_baseBlock,
                                   nv_ns::kOpaqueResponseMessageId);
  }
}

OpaqueResponseMessage::OpaqueResponseMessage(const dictionary& entries) {
  DictionaryStreamable::RetrieveDictionaryData(entries, m_baseBlock, kBlockId);
}

OpaqueResponseMessage::~OpaqueResponseMessage() = default;

void OpaqueResponseMessage::SaveToMessage(OpaqueDataMessage& message) {
  AgileStreamable::StoreAgile(message, m_baseBlock,
                              nv_ns::kOpaqueResponseMessageId);
}

void OpaqueResponseMessage::SaveToDictionary(dictionary& entries) {
  DictionaryStreamable::StoreDictionaryData(entries, m_baseBlock, kBlockId);
}

namespace {

void LoadBytes(const OpaqueDataMessage& message, short id, std::string& out) {
  if (const std::string* bytes = message.FindAgileData(id)) out = *bytes;
}

void LoadBytes(const dictionary& entries, short id, std::string& out) {
  const auto it = entries.find(id);
  if (it != entries.end() && it->second) {
    out.assign(it->second->m_pData,
               static_cast<std::size_t>(it->second->m_size));
  }
}

// The first builds copied the string's bytes onto the DataBuffer record
// itself, over its pointer and size and past its end, and left the array
// uninitialised. This copies them into the record's own array instead, so
// the entry holds exactly the string's bytes.
void StoreBytes(dictionary& entries, short id, const std::string& bytes) {
  auto* buffer = new nv_ns::DataBuffer(bytes.size());
  if (!bytes.empty()) std::memcpy(buffer->m_pData, bytes.data(), bytes.size());
  entries[id] = boost::shared_ptr<const nv_ns::DataBuffer>(buffer);
}

}  // namespace

AlgoEngineRequest::AlgoEngineRequest(const OpaqueDataMessage& message)
    : OpaqueRequestMessage(message) {
  LoadBytes(message, kBlockId, m_data);
}

AlgoEngineRequest::AlgoEngineRequest(const dictionary& entries)
    : OpaqueRequestMessage(entries) {
  LoadBytes(entries, kBlockId, m_data);
}

void AlgoEngineRequest::SaveToMessage(OpaqueDataMessage& message) {
  OpaqueRequestMessage::SaveToMessage(message);
  message.StoreAgileData<std::string>(GetBlockId(), m_data);
}

void AlgoEngineRequest::SaveToDictionary(dictionary& entries) {
  OpaqueRequestMessage::SaveToDictionary(entries);
  StoreBytes(entries, GetBlockId(), m_data);
}

AlgoEngineResponse::AlgoEngineResponse(const OpaqueDataMessage& message)
    : OpaqueResponseMessage(message) {
  LoadBytes(message, kBlockId, m_data);
}

AlgoEngineResponse::AlgoEngineResponse(const dictionary& entries)
    : OpaqueResponseMessage(entries) {
  LoadBytes(entries, kBlockId, m_data);
}

void AlgoEngineResponse::SaveToMessage(OpaqueDataMessage& message) {
  OpaqueResponseMessage::SaveToMessage(message);
  message.StoreAgileData<std::string>(GetBlockId(), m_data);
}

void AlgoEngineResponse::SaveToDictionary(dictionary& entries) {
  OpaqueResponseMessage::SaveToDictionary(entries);
  StoreBytes(entries, GetBlockId(), m_data);
}

namespace {

bool Has(const OpaqueDataMessage& message, short id) {
  return message.AgileElementExists(id);
}
bool Has(const dictionary& entries, short id) {
  return entries.find(id) != entries.end();
}

// A failed allocation gives null; a malformed block's StreamingException
// goes to the caller.
template <typename Carrier>
OpaqueRequestMessage* CreateRequest(const Carrier& carrier) {
  try {
    if (Has(carrier, ServerVersionRequest::kBlockId)) {
      return new ServerVersionRequest(carrier);
    }
    if (Has(carrier, ImpersonateUserRequest::kBlockId)) {
      return new ImpersonateUserRequest(carrier);
    }
    if (Has(carrier, SupportedExchangeRequest::kBlockId)) {
      return new SupportedExchangeRequest(carrier);
    }
    if (Has(carrier, PushMGTRequest::kBlockId)) {
      return new PushMGTRequest(carrier);
    }
  } catch (const std::bad_alloc&) {
  }
  return nullptr;
}

template <typename Carrier>
OpaqueResponseMessage* CreateResponse(const Carrier& carrier) {
  try {
    if (Has(carrier, ServerVersionResponse::kBlockId)) {
      return new ServerVersionResponse(carrier);
    }
    if (Has(carrier, ImpersonateUserResponse::kBlockId)) {
      return new ImpersonateUserResponse(carrier);
    }
    if (Has(carrier, SupportedExchangeResponse::kBlockId)) {
      return new SupportedExchangeResponse(carrier);
    }
    if (Has(carrier, PushMGTResponse::kBlockId)) {
      return new PushMGTResponse(carrier);
    }
  } catch (const std::bad_alloc&) {
  }
  return nullptr;
}

}  // namespace

OpaqueRequestMessage* CreateCommonRequestMessage(
    const OpaqueDataMessage& message) {
  return CreateRequest(message);
}

OpaqueRequestMessage* CreateCommonRequestMessage(const dictionary& entries) {
  return CreateRequest(entries);
}

OpaqueResponseMessage* CreateCommonResponseMessage(
    const OpaqueDataMessage& message) {
  return CreateResponse(message);
}

OpaqueResponseMessage* CreateCommonResponseMessage(const dictionary& entries) {
  return CreateResponse(entries);
}

}  // namespace nv_opaque_ns
