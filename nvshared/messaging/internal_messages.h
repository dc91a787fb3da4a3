// The internal messages of a connection, in namespace nv_opaque_ns:
// connect, connect response, disconnect, a free text, cancelling a
// subscription, and asking for the server's instance id. Each is one tagged
// block under its id, carried like the opaque messages (an OpaqueDataMessage
// attachment or a dictionary entry) but without a base block. This library
// reads them; a sender stores the block with AgileStreamable::StoreAgile or
// DictionaryStreamable::StoreDictionaryData under the block's id.
//
// CreateInternalMessage returns a new message or null; the caller owns it.
// Values; one thread at a time per instance.
#ifndef NVSHARED_MESSAGING_INTERNAL_MESSAGES_H_
#define NVSHARED_MESSAGING_INTERNAL_MESSAGES_H_

#include <cstdint>
#include <string>

#include "nvshared/export.h"
#include "nvshared/messaging/xstreamable.h"
#include "nvshared/platform/core/opaque_data_message.h"
#include "nvshared/platform/utils/agile_streamable.h"
#include "nvshared/platform/utils/data_buffer.h"

namespace nv_opaque_ns {

// Ties a block type to the id it travels under.
template <short N>
class MessageBlockType {
 public:
  static constexpr short kBlockId = N;
};

class NVSHARED_API InternalMessage {
 public:
  virtual ~InternalMessage();
  virtual short GetBlockId() const = 0;
};

// One message holding one Block, which derives from MessageBlockType<N>.
template <typename Block>
class NVSHARED_API GenericMessage final : public InternalMessage {
 public:
  GenericMessage() = default;
  // The block keeps its defaults when the message lacks it; a malformed
  // block raises nv_ns::StreamingException.
  explicit GenericMessage(const dv_core_ns::OpaqueDataMessage& message) {
    if (message.AgileElementExists(Block::kBlockId)) {
      nv_ns::AgileStreamable::RetrieveAgile(
          message, m_block, static_cast<nv_ns::AttachmentId>(Block::kBlockId));
    }
  }
  explicit GenericMessage(const nv_ns::dictionary& entries) {
    nv_ns::DictionaryStreamable::RetrieveDictionaryData(entries, m_block,
                                                        Block::kBlockId);
  }
  short GetBlockId() const override { return Block::kBlockId; }

  Block& GetBlock() { return m_block; }
  const Block& GetBlock() const { return m_block; }

 private:
  Block m_block;
};

// "CMSB", version 2, id 5218.
class NVSHARED_API ConnectMessageBlock
    : public nv_ns::XStreamable,
      public MessageBlockType<nv_ns::kConnectMessageId> {
 public:
  static constexpr char kName[kNameLength] = {'C', 'M', 'S', 'B', 0};
  static constexpr std::uint32_t kVersion = 2;

  std::string m_ipAddress;
  // Read as true from a version-1 writer, which had no such item: every
  // client of that version supports it.
  bool m_bSupportAlgo = false;

  ConnectMessageBlock() : XStreamable(kName, kVersion) {}
  virtual ~ConnectMessageBlock() = default;
  void Transfer() override;
  // 7 plus the length of the address.
  std::uint64_t Measure() const override;
};

// "CRMB", version 2, id 5219.
class NVSHARED_API ConnectResponseMessageBlock
    : public nv_ns::XStreamable,
      public MessageBlockType<nv_ns::kConnectResponseMessageId> {
 public:
  static constexpr char kName[kNameLength] = {'C', 'R', 'M', 'B', 0};
  static constexpr std::uint32_t kVersion = 2;

  int m_iRequestID = -1;
  std::string m_ipAddress;
  std::string m_serverInstanceId;

  ConnectResponseMessageBlock() : XStreamable(kName, kVersion) {}
  virtual ~ConnectResponseMessageBlock() = default;
  void Transfer() override;
  // 14 plus the lengths of the two strings.
  std::uint64_t Measure() const override;
};

// "DMSB", version 1, id 5220.
class NVSHARED_API DisconnectMessageBlock
    : public nv_ns::XStreamable,
      public MessageBlockType<nv_ns::kDisconnectMessageId> {
 public:
  static constexpr char kName[kNameLength] = {'D', 'M', 'S', 'B', 0};
  static constexpr std::uint32_t kVersion = 1;

  int m_iRequestID = -1;
  std::string m_sReason;

  DisconnectMessageBlock() : XStreamable(kName, kVersion) {}
  virtual ~DisconnectMessageBlock() = default;
  void Transfer() override;
  // 10 plus the length of the reason.
  std::uint64_t Measure() const override;
};

// "SMB", version 1, id 5221.
class NVSHARED_API StringMessageBlock
    : public nv_ns::XStreamable,
      public MessageBlockType<nv_ns::kStringMessageId> {
 public:
  static constexpr char kName[kNameLength] = {'S', 'M', 'B', 0, 0};
  static constexpr std::uint32_t kVersion = 1;

  int m_iRequestID = -1;
  std::string m_sMessage;

  StringMessageBlock() : XStreamable(kName, kVersion) {}
  virtual ~StringMessageBlock() = default;
  void Transfer() override;
  // 10 plus the length of the text.
  std::uint64_t Measure() const override;
};

// "CSMB", version 1, id 5222.
class NVSHARED_API CancelSubscriptionMessageBlock
    : public nv_ns::XStreamable,
      public MessageBlockType<nv_ns::kCancelSubscriptionMessageId> {
 public:
  static constexpr char kName[kNameLength] = {'C', 'S', 'M', 'B', 0};
  static constexpr std::uint32_t kVersion = 1;

  int m_iSubscriptionRequestID = -1;

  CancelSubscriptionMessageBlock() : XStreamable(kName, kVersion) {}
  virtual ~CancelSubscriptionMessageBlock() = default;
  void Transfer() override;
  std::uint64_t Measure() const override { return 6; }
};

// "SIRB", version 1, id 5227: no items, a bare header.
class NVSHARED_API ServerInstanceIDRequestMessageBlock
    : public nv_ns::XStreamable,
      public MessageBlockType<nv_ns::kServerInstanceIDRequestId> {
 public:
  static constexpr char kName[kNameLength] = {'S', 'I', 'R', 'B', 0};
  static constexpr std::uint32_t kVersion = 1;

  ServerInstanceIDRequestMessageBlock() : XStreamable(kName, kVersion) {}
  virtual ~ServerInstanceIDRequestMessageBlock() = default;
  void Transfer() override {}
  std::uint64_t Measure() const override { return 0; }
};

// "SIRS", version 1, id 5228.
class NVSHARED_API ServerInstanceIDResponseBlock
    : public nv_ns::XStreamable,
      public MessageBlockType<nv_ns::kServerInstanceIDResponseId> {
 public:
  static constexpr char kName[kNameLength] = {'S', 'I', 'R', 'S', 0};
  static constexpr std::uint32_t kVersion = 1;

  int m_iRequestID = -1;
  std::string m_serverInstanceId;
  bool m_bClientConnected = false;

  ServerInstanceIDResponseBlock() : XStreamable(kName, kVersion) {}
  virtual ~ServerInstanceIDResponseBlock() = default;
  void Transfer() override;
  // 13 plus the length of the instance id.
  std::uint64_t Measure() const override;
};

using ConnectMessage = GenericMessage<ConnectMessageBlock>;
using ConnectResponseMessage = GenericMessage<ConnectResponseMessageBlock>;
using DisconnectMessage = GenericMessage<DisconnectMessageBlock>;
using StringMessage = GenericMessage<StringMessageBlock>;
using CancelSubscriptionMessage =
    GenericMessage<CancelSubscriptionMessageBlock>;
using ServerInstanceIDRequestMessage =
    GenericMessage<ServerInstanceIDRequestMessageBlock>;
using ServerInstanceIDResponseMessage =
    GenericMessage<ServerInstanceIDResponseBlock>;

// Build the first message whose id is present, testing 5218, 5219, 5220,
// 5221, 5222, 5227 and 5228 in that order; null if none is (or memory runs
// out).
NVSHARED_API InternalMessage* CreateInternalMessage(
    const dv_core_ns::OpaqueDataMessage& message);
NVSHARED_API InternalMessage* CreateInternalMessage(
    const nv_ns::dictionary& entries);

}  // namespace nv_opaque_ns

#endif  // NVSHARED_MESSAGING_INTERNAL_MESSAGES_H_
