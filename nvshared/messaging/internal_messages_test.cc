#include "nvshared/messaging/internal_messages.h"

#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "nvshared/testing/hex_bytes.h"

namespace nv_opaque_ns {
namespace {

using nvshared::testing::HexBytes;
using nvshared::testing::ToHex;

// Writes `block` and compares with `golden`, then builds the message from
// `golden` stored under the block's id on both carriers and lets `check`
// look at the block each time.
template <typename Block>
void ExpectGolden(const std::string& golden, Block& block,
                  const std::function<void(const Block&)>& check) {
  std::string written(golden.size() + 64, '\0');
  written.resize(block.WriteTo(written.data(), written.size()));
  EXPECT_EQ(ToHex(written), ToHex(golden));
  EXPECT_EQ(block.Measure() + 12, golden.size());

  dv_core_ns::OpaqueDataMessage message;
  message.StoreAgileData<std::string>(Block::kBlockId, golden);
  std::unique_ptr<InternalMessage> built(CreateInternalMessage(message));
  ASSERT_NE(built, nullptr);
  EXPECT_EQ(built->GetBlockId(), Block::kBlockId);
  auto* typed = dynamic_cast<GenericMessage<Block>*>(built.get());
  ASSERT_NE(typed, nullptr);
  check(typed->GetBlock());

  nv_ns::dictionary entries;
  entries[Block::kBlockId] = boost::shared_ptr<const nv_ns::DataBuffer>(
      new nv_ns::DataBuffer(golden.data(), golden.size()));
  GenericMessage<Block> from_dictionary(entries);
  check(from_dictionary.GetBlock());
}

TEST(InternalMessagesTest, BlocksMatchHandBuiltBytes) {
  ConnectMessageBlock connect;
  connect.m_ipAddress = "ip";
  ExpectGolden<ConnectMessageBlock>(
      HexBytes("01 15 00 02 00 00 00 'C' 'M' 'S' 'B' 00"
               "| 53 03 00 01 'i' 'p' | 54 01 00"),
      connect, [](const ConnectMessageBlock& b) {
        EXPECT_EQ(b.m_ipAddress, "ip");
        EXPECT_FALSE(b.m_bSupportAlgo);
      });

  ConnectResponseMessageBlock connected;
  connected.m_iRequestID = 4;
  connected.m_ipAddress = "a";
  connected.m_serverInstanceId = "b";
  ExpectGolden<ConnectResponseMessageBlock>(
      HexBytes("01 1c 00 02 00 00 00 'C' 'R' 'M' 'B' 00 | 54 04 04 00 00 00"
               "| 53 02 00 01 'a' | 53 02 00 01 'b'"),
      connected, [](const ConnectResponseMessageBlock& b) {
        EXPECT_EQ(b.m_iRequestID, 4);
        EXPECT_EQ(b.m_ipAddress, "a");
        EXPECT_EQ(b.m_serverInstanceId, "b");
      });

  DisconnectMessageBlock disconnect;
  disconnect.m_iRequestID = 1;
  disconnect.m_sReason = "r";
  ExpectGolden<DisconnectMessageBlock>(
      HexBytes("01 17 00 01 00 00 00 'D' 'M' 'S' 'B' 00 | 54 04 01 00 00 00"
               "| 53 02 00 01 'r'"),
      disconnect, [](const DisconnectMessageBlock& b) {
        EXPECT_EQ(b.m_iRequestID, 1);
        EXPECT_EQ(b.m_sReason, "r");
      });

  StringMessageBlock text;
  text.m_iRequestID = 2;
  text.m_sMessage = "hi";
  ExpectGolden<StringMessageBlock>(
      HexBytes("01 18 00 01 00 00 00 'S' 'M' 'B' 00 00 | 54 04 02 00 00 00"
               "| 53 03 00 01 'h' 'i'"),
      text, [](const StringMessageBlock& b) {
        EXPECT_EQ(b.m_iRequestID, 2);
        EXPECT_EQ(b.m_sMessage, "hi");
      });

  CancelSubscriptionMessageBlock cancel;
  cancel.m_iSubscriptionRequestID = 5;
  ExpectGolden<CancelSubscriptionMessageBlock>(
      HexBytes("01 12 00 01 00 00 00 'C' 'S' 'M' 'B' 00 | 54 04 05 00 00 00"),
      cancel, [](const CancelSubscriptionMessageBlock& b) {
        EXPECT_EQ(b.m_iSubscriptionRequestID, 5);
      });

  // A bare 12-byte header.
  ServerInstanceIDRequestMessageBlock ask;
  ExpectGolden<ServerInstanceIDRequestMessageBlock>(
      HexBytes("01 0c 00 01 00 00 00 'S' 'I' 'R' 'B' 00"), ask,
      [](const ServerInstanceIDRequestMessageBlock&) {});

  ServerInstanceIDResponseBlock answer;
  answer.m_iRequestID = 3;
  answer.m_serverInstanceId = "x";
  answer.m_bClientConnected = true;
  ExpectGolden<ServerInstanceIDResponseBlock>(
      HexBytes("01 1a 00 01 00 00 00 'S' 'I' 'R' 'S' 00 | 54 04 03 00 00 00"
               "| 53 02 00 01 'x' | 54 01 01"),
      answer, [](const ServerInstanceIDResponseBlock& b) {
        EXPECT_EQ(b.m_iRequestID, 3);
        EXPECT_EQ(b.m_serverInstanceId, "x");
        EXPECT_TRUE(b.m_bClientConnected);
      });
}

TEST(InternalMessagesTest, ConnectVersionDecidesSupportAlgo) {
  struct Case {
    const char* name;
    const char* hex;
    bool supportAlgo;
  };
  const Case cases[] = {
      // Version 1 had no such item, and its clients all support it.
      {"v1", "01 12 00 01 00 00 00 'C' 'M' 'S' 'B' 00 | 53 03 00 01 'i' 'p'",
       true},
      // Version 1 stops after the address even if more follows.
      {"v1 longer",
       "01 15 00 01 00 00 00 'C' 'M' 'S' 'B' 00 | 53 03 00 01 'i' 'p'"
       "| 54 01 00",
       true},
      {"v2 false",
       "01 15 00 02 00 00 00 'C' 'M' 'S' 'B' 00 | 53 03 00 01 'i' 'p'"
       "| 54 01 00",
       false},
      {"v3 true",
       "01 15 00 03 00 00 00 'C' 'M' 'S' 'B' 00 | 53 03 00 01 'i' 'p'"
       "| 54 01 01",
       true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string bytes = HexBytes(c.hex);
    ConnectMessageBlock block;
    block.ReadFrom(bytes.data(), bytes.size());
    EXPECT_EQ(block.m_ipAddress, "ip");
    EXPECT_EQ(block.m_bSupportAlgo, c.supportAlgo);
  }
  // Version 0 goes through the normal item and meets the gate: an older
  // writer that ends after the address leaves the default.
  const std::string v0 =
      HexBytes("01 12 00 00 00 00 00 'C' 'M' 'S' 'B' 00 | 53 03 00 01 'i' 'p'");
  ConnectMessageBlock block;
  block.ReadFrom(v0.data(), v0.size());
  EXPECT_FALSE(block.m_bSupportAlgo);
  // The same version as this code must hold the item.
  const std::string v2 =
      HexBytes("01 12 00 02 00 00 00 'C' 'M' 'S' 'B' 00 | 53 03 00 01 'i' 'p'");
  EXPECT_THROW(block.ReadFrom(v2.data(), v2.size()), nv_ns::StreamingException);
}

TEST(InternalMessagesTest, AbsentOrMalformedBlocks) {
  // Absent: the block keeps its defaults; no error.
  dv_core_ns::OpaqueDataMessage empty;
  EXPECT_EQ(CreateInternalMessage(empty), nullptr);
  EXPECT_EQ(ConnectResponseMessage(empty).GetBlock().m_iRequestID, -1);
  EXPECT_EQ(StringMessage(nv_ns::dictionary()).GetBlock().m_iRequestID, -1);

  dv_core_ns::OpaqueDataMessage wrong;
  wrong.StoreAgileData<std::string>(
      5221, HexBytes("01 0c 00 01 00 00 00 'S' 'M' 'B' 'X' 00"));
  EXPECT_THROW(CreateInternalMessage(wrong), nv_ns::StreamingException);
}

}  // namespace
}  // namespace nv_opaque_ns
