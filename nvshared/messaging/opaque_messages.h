// The opaque request and response messages of namespace nv_opaque_ns. A
// message is a set of tagged blocks carried as attachments of a
// dv_core_ns::OpaqueDataMessage or as entries of an nv_ns::dictionary: the
// base block of its side under 5210 (requests) or 5211 (responses), and, in
// a concrete message, its own block under its id, which is also the
// message's type. Reading a message whose block is absent leaves that
// block's defaults; a malformed block raises nv_ns::StreamingException out
// of the constructor.
//
// The factories return a new message, or null; the caller owns it. Messages
// are values with public blocks; one thread at a time per instance.
#ifndef NVSHARED_MESSAGING_OPAQUE_MESSAGES_H_
#define NVSHARED_MESSAGING_OPAQUE_MESSAGES_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/messaging/opaque_blocks.h"
#include "nvshared/platform/core/opaque_data_message.h"
#include "nvshared/platform/utils/agile_streamable.h"
#include "nvshared/platform/utils/data_buffer.h"

namespace nv_opaque_ns {

using dv_core_ns::OpaqueDataMessage;
using nv_ns::dictionary;

class NVSHARED_API OpaqueRequestMessage {
 public:
  static constexpr short kBlockId = nv_ns::kOpaqueRequestMessageId;

  OpaqueRequestMessage() = default;
  explicit OpaqueRequestMessage(const OpaqueDataMessage& message);
  explicit OpaqueRequestMessage(const dictionary& entries);
  virtual ~OpaqueRequestMessage();
  // Store the base block, then (in a concrete message) its own block.
  virtual void SaveToMessage(OpaqueDataMessage& message);
  virtual void SaveToDictionary(dictionary& entries);
  virtual short GetBlockId() const { return kBlockId; }

  OpaqueRequestMessageBlock m_baseBlock;
};

class NVSHARED_API OpaqueResponseMessage {
 public:
  static constexpr short kBlockId = nv_ns::kOpaqueResponseMessageId;

  OpaqueResponseMessage() = default;
  explicit OpaqueResponseMessage(const OpaqueDataMessage& message);
  explicit OpaqueResponseMessage(const dictionary& entries);
  virtual ~OpaqueResponseMessage();
  virtual void SaveToMessage(OpaqueDataMessage& message);
  virtual void SaveToDictionary(dictionary& entries);
  virtual short GetBlockId() const { return kBlockId; }

  OpaqueResponseMessageBlock m_baseBlock;
};

// A concrete message: the base of its side plus one block of type Block
// stored under Id.
template <typename Base, typename Block, short Id>
class NVSHARED_API OpaqueBlockMessage : public Base {
 public:
  static constexpr short kBlockId = Id;

  OpaqueBlockMessage() = default;
  explicit OpaqueBlockMessage(const OpaqueDataMessage& message)
      : Base(message) {
    if (message.AgileElementExists(Id)) {
      nv_ns::AgileStreamable::RetrieveAgile(message, m_block, AttachmentId());
    }
  }
  explicit OpaqueBlockMessage(const dictionary& entries) : Base(entries) {
    nv_ns::DictionaryStreamable::RetrieveDictionaryData(entries, m_block, Id);
  }
  void SaveToMessage(OpaqueDataMessage& message) override {
    Base::SaveToMessage(message);
    nv_ns::AgileStreamable::StoreAgile(message, m_block, AttachmentId());
  }
  void SaveToDictionary(dictionary& entries) override {
    Base::SaveToDictionary(entries);
    nv_ns::DictionaryStreamable::StoreDictionaryData(entries, m_block, Id);
  }
  short GetBlockId() const override { return Id; }

  Block m_block;

 private:
  static nv_ns::AttachmentId AttachmentId() {
    return static_cast<nv_ns::AttachmentId>(Id);
  }
};

class NVSHARED_API ServerVersionRequest final
    : public OpaqueBlockMessage<OpaqueRequestMessage, ServerVersionRequestBlock,
                                nv_ns::kServerVersionRequestId> {
 public:
  using OpaqueBlockMessage::OpaqueBlockMessage;
};

class NVSHARED_API ServerVersionResponse final
    : public OpaqueBlockMessage<OpaqueResponseMessage,
                                ServerVersionResponseBlock,
                                nv_ns::kServerVersionResponseId> {
 public:
  using OpaqueBlockMessage::OpaqueBlockMessage;
};

class NVSHARED_API ImpersonateUserRequest final
    : public OpaqueBlockMessage<OpaqueRequestMessage,
                                ImpersonateUserRequestBlock,
                                nv_ns::kImpersonateUserRequestId> {
 public:
  using OpaqueBlockMessage::OpaqueBlockMessage;
};

class NVSHARED_API ImpersonateUserResponse final
    : public OpaqueBlockMessage<OpaqueResponseMessage,
                                ImpersonateUserResponseBlock,
                                nv_ns::kImpersonateUserResponseId> {
 public:
  using OpaqueBlockMessage::OpaqueBlockMessage;
};

class NVSHARED_API SupportedExchangeRequest final
    : public OpaqueBlockMessage<OpaqueRequestMessage,
                                SupportedExchangeRequestBlock,
                                nv_ns::kSupportedExchangeRequestId> {
 public:
  using OpaqueBlockMessage::OpaqueBlockMessage;
};

class NVSHARED_API SupportedExchangeResponse final
    : public OpaqueBlockMessage<OpaqueResponseMessage,
                                SupportedExchangeResponseBlock,
                                nv_ns::kSupportedExchangeResponseId> {
 public:
  using OpaqueBlockMessage::OpaqueBlockMessage;
};

class NVSHARED_API PushMGTRequest final
    : public OpaqueBlockMessage<OpaqueRequestMessage, PushMGTRequestBlock,
                                nv_ns::kPushMGTRequestId> {
 public:
  using OpaqueBlockMessage::OpaqueBlockMessage;
};

class NVSHARED_API PushMGTResponse final
    : public OpaqueBlockMessage<OpaqueResponseMessage, PushMGTResponseBlock,
                                nv_ns::kPushMGTResponseId> {
 public:
  using OpaqueBlockMessage::OpaqueBlockMessage;
};

// A request whose content is a string of opaque bytes in place of a block,
// stored as it stands under 5225. The factories never build it.
class NVSHARED_API AlgoEngineRequest final : public OpaqueRequestMessage {
 public:
  static constexpr short kBlockId = nv_ns::kAlgoEngineRequestId;

  AlgoEngineRequest() = default;
  explicit AlgoEngineRequest(const OpaqueDataMessage& message);
  explicit AlgoEngineRequest(const dictionary& entries);
  void SaveToMessage(OpaqueDataMessage& message) override;
  void SaveToDictionary(dictionary& entries) override;
  short GetBlockId() const override { return kBlockId; }

  std::string m_data;
};

// The response side of AlgoEngineRequest, under 5226.
class NVSHARED_API AlgoEngineResponse final : public OpaqueResponseMessage {
 public:
  static constexpr short kBlockId = nv_ns::kAlgoEngineResponseId;

  AlgoEngineResponse() = default;
  explicit AlgoEngineResponse(const OpaqueDataMessage& message);
  explicit AlgoEngineResponse(const dictionary& entries);
  void SaveToMessage(OpaqueDataMessage& message) override;
  void SaveToDictionary(dictionary& entries) override;
  short GetBlockId() const override { return kBlockId; }

  std::string m_data;
};

// Build the first message whose id is present, testing 5212, 5214, 5216 and
// 5223 in that order; null if none is (or memory runs out).
NVSHARED_API OpaqueRequestMessage* CreateCommonRequestMessage(
    const OpaqueDataMessage& message);
NVSHARED_API OpaqueRequestMessage* CreateCommonRequestMessage(
    const dictionary& entries);
// The same over 5213, 5215, 5217 and 5224.
NVSHARED_API OpaqueResponseMessage* CreateCommonResponseMessage(
    const OpaqueDataMessage& message);
NVSHARED_API OpaqueResponseMessage* CreateCommonResponseMessage(
    const dictionary& entries);

}  // namespace nv_opaque_ns

#endif  // NVSHARED_MESSAGING_OPAQUE_MESSAGES_H_
