// Golden vectors for every block, built by hand from the format tables.
#include "nvshared/messaging/opaque_blocks.h"

#include <string>

#include <gtest/gtest.h>

#include "nvshared/messaging/internal_messages.h"
#include "nvshared/testing/hex_bytes.h"

namespace nv_opaque_ns {
namespace {

using nvshared::testing::HexBytes;
using nvshared::testing::ToHex;

// Reads the hand-built bytes, then writes the block read and expects the
// same bytes back (every value in the vectors differs from its default, so
// an item the reader dropped shows up), and checks Measure() against them.
// A block whose read changes a value (a lent user name) does neither.
template <typename Block>
Block RoundTrip(const char* hex, bool rewrites = true) {
  const std::string golden = HexBytes(hex);
  Block block;
  EXPECT_EQ(block.ReadFrom(golden.data(), golden.size()), golden.size());
  if (rewrites) {
    EXPECT_EQ(block.Measure() + 12, golden.size()) << Block::kName;
    Block copy = block;
    std::string written(golden.size() + 16, '\0');
    written.resize(copy.WriteTo(written.data(), written.size()));
    EXPECT_EQ(ToHex(written), ToHex(golden)) << Block::kName;
  }
  return block;
}

TEST(OpaqueBlocksTest, GoldenBytesBothWays) {
  RoundTrip<OpaqueRequestMessageBlock>(
      "01 23 00 01 00 00 00 'O' 'R' 'Q' 'M' 00 | 54 01 01"
      "| 54 08 01 00 00 00 00 00 00 00 | 54 08 08 07 06 05 04 03 02 01");
  RoundTrip<OpaqueResponseMessageBlock>(
      "01 26 00 01 00 00 00 'O' 'R' 'S' 'M' 00 | 54 04 07 00 00 00"
      "| 54 08 fe ff ff ff ff ff ff ff | 54 08 02 00 00 00 00 00 00 00");
  RoundTrip<ServerVersionRequestBlock>(
      "01 1c 00 01 00 00 00 'S' 'V' 'R' 'Q' 00 | 53 02 00 01 'u'"
      "| 53 03 00 01 'a' 'p' | 53 02 00 01 'c'");
  RoundTrip<ServerVersionResponseBlock>(
      "01 48 00 02 00 00 00 'S' 'V' 'R' 'S' 00 | 54 04 03 00 00 00"
      "| 53 02 00 01 's' | 53 02 00 01 'v' | 53 02 00 01 'e'"
      "| 54 04 02 00 00 00 | 53 02 00 01 'i' | 45 1b 00 01 00"
      "|   01 17 00 01 00 00 00 'E' 'I' 'B' 00 00 | 54 04 05 00 00 00"
      "|   53 02 00 01 'f'");
  RoundTrip<ImpersonateUserRequestBlock>(
      "01 39 00 03 00 00 00 'I' 'U' 'R' 'Q' 00 | 54 04 10 00 00 00"
      "| 53 02 00 01 'M' | 53 02 00 01 'G' | 53 02 00 01 'T'"
      "| 53 03 00 01 'p' 'w' | 54 04 02 00 00 00 | 54 04 03 00 00 00"
      "| 54 01 01 | 54 01 01");
  RoundTrip<SupportedExchangeResponseBlock>(
      "01 44 00 05 00 00 00 'S' 'E' 'R' 'S' 00 | 54 04 09 00 00 00"
      "| 56 05 00 04 01 00 00 00 | 56 05 00 04 02 00 00 00"
      "| 56 09 00 04 01 00 00 00 02 00 00 00 | 56 01 00 04"
      "| 54 04 04 00 00 00 | 56 05 00 04 07 00 00 00 | 56 01 00 04");
  RoundTrip<PushMGTResponseBlock>(
      "01 12 00 01 00 00 00 'P' 'M' 'R' 'S' 00 | 53 03 00 01 'o' 'k'");
  // The empty blocks are bare headers, with their own versions.
  RoundTrip<ImpersonateUserResponseBlock>(
      "01 0c 00 01 00 00 00 'I' 'U' 'R' 'S' 00");
  RoundTrip<SupportedExchangeRequestBlock>(
      "01 0c 00 0a 00 00 00 'S' 'E' 'R' 'Q' 00");
  RoundTrip<ServerInstanceIDRequestMessageBlock>(
      "01 0c 00 01 00 00 00 'S' 'I' 'R' 'B' 00");
}

TEST(OpaqueBlocksTest, GoldenPushOfTwoImpersonations) {
  // The first element has no user name of its own and takes the list's
  // ("U") on read, so the block read writes back different bytes.
  auto pmrq = RoundTrip<PushMGTRequestBlock>(
      "01 9f 00 03 00 00 00 'P' 'M' 'R' 'Q' 00 | 49 8d 00"
      "| 01 8d 00 09 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 02 00 00 00"
      "| 54 04 07 00 00 00 | 53 03 00 01 'M' '1' | 53 02 00 01 'G'"
      "| 53 02 00 01 'T'"
      "| 54 04 ff ff ff ff | 53 01 00 01 | 53 01 00 01 | 53 01 00 01"
      "| 53 02 00 01 'U' | 53 02 00 01 'p' | 53 01 00 01"
      "| 53 01 00 01 | 53 02 00 01 'V'"
      "| 54 04 01 00 00 00 | 54 04 02 00 00 00 | 54 01 01 | 54 01 00"
      "| 54 04 05 00 00 00"
      "| 54 04 02 01 00 00 | 54 04 00 00 00 00 | 54 01 00 | 54 01 01"
      "| 54 04 ff ff ff ff"
      "| 54 04 09 00 00 00 | 54 04 00 00 00 00 | 54 01 01",
      /*rewrites=*/false);
  ASSERT_EQ(pmrq.m_list.size(), 2u);
  const ImpersonationData& a = pmrq.m_list.front();
  EXPECT_EQ(a.m_szMember, "M1");
  EXPECT_EQ(a.m_szUserName, "U");
  EXPECT_EQ(a.m_nCaretakerID, 9u);
  EXPECT_EQ(pmrq.m_list.back().m_szUserName, "V");
  EXPECT_EQ(pmrq.m_list.back().m_iBrokerId, 0x0102);
  EXPECT_TRUE(pmrq.m_bDownloadAllOrders);
}

TEST(OpaqueBlocksTest, GoldenInternalBlocks) {
  RoundTrip<ConnectMessageBlock>(
      "01 15 00 02 00 00 00 'C' 'M' 'S' 'B' 00 | 53 03 00 01 'i' 'p'"
      "| 54 01 01");
  RoundTrip<ConnectResponseMessageBlock>(
      "01 1c 00 02 00 00 00 'C' 'R' 'M' 'B' 00 | 54 04 04 00 00 00"
      "| 53 02 00 01 'a' | 53 02 00 01 'b'");
  RoundTrip<DisconnectMessageBlock>(
      "01 17 00 01 00 00 00 'D' 'M' 'S' 'B' 00 | 54 04 01 00 00 00"
      "| 53 02 00 01 'r'");
  RoundTrip<StringMessageBlock>(
      "01 18 00 01 00 00 00 'S' 'M' 'B' 00 00 | 54 04 02 00 00 00"
      "| 53 03 00 01 'h' 'i'");
  RoundTrip<CancelSubscriptionMessageBlock>(
      "01 12 00 01 00 00 00 'C' 'S' 'M' 'B' 00 | 54 04 05 00 00 00");
  RoundTrip<ServerInstanceIDResponseBlock>(
      "01 1a 00 01 00 00 00 'S' 'I' 'R' 'S' 00 | 54 04 03 00 00 00"
      "| 53 02 00 01 'x' | 54 01 01");
}

TEST(OpaqueBlocksTest, OlderWritersEndEarly) {
  // A "SVRS" of version 1 ends after m_engineType; the rest keep what they
  // held.
  const std::string svrs = HexBytes(
      "01 26 00 01 00 00 00 'S' 'V' 'R' 'S' 00 | 54 04 03 00 00 00"
      "| 53 02 00 01 's' | 53 02 00 01 'v' | 53 01 00 01 | 54 04 02 00 00 00");
  ServerVersionResponseBlock block;
  block.m_serverInstanceId = "kept";
  EXPECT_EQ(block.ReadFrom(svrs.data(), svrs.size()), svrs.size());
  EXPECT_EQ(block.m_engineType, 2);
  EXPECT_EQ(block.m_serverInstanceId, "kept");
  EXPECT_TRUE(block.m_engineInfos.empty());

  // "CMSB": version 1 had no m_bSupportAlgo and its clients all support it;
  // any other version reads the item (version 0 meets the usual gate).
  struct Case {
    const char* hex;
    bool supportAlgo;
  };
  const Case cases[] = {
      {"01 12 00 01 00 00 00 'C' 'M' 'S' 'B' 00 | 53 03 00 01 'i' 'p'", true},
      {"01 15 00 02 00 00 00 'C' 'M' 'S' 'B' 00 | 53 03 00 01 'i' 'p'"
       "| 54 01 00",
       false},
      {"01 12 00 00 00 00 00 'C' 'M' 'S' 'B' 00 | 53 03 00 01 'i' 'p'", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.hex);
    const std::string bytes = HexBytes(c.hex);
    ConnectMessageBlock connect;
    connect.ReadFrom(bytes.data(), bytes.size());
    EXPECT_EQ(connect.m_ipAddress, "ip");
    EXPECT_EQ(connect.m_bSupportAlgo, c.supportAlgo);
  }
}

}  // namespace
}  // namespace nv_opaque_ns
