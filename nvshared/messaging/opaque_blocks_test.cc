// Golden vectors for every block, built by hand from the format tables
// (most of them in testdata/opaque_blocks.txt).
#include "nvshared/messaging/opaque_blocks.h"

#include <map>
#include <set>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "nvshared/messaging/internal_messages.h"
#include "nvshared/testing/hex_bytes.h"
#include "nvshared/testing/test_data.h"

namespace nv_opaque_ns {
namespace {

using nvshared::testing::HexBytes;
using nvshared::testing::ToHex;

// Reads the hand-built bytes, then writes the block read and expects the
// same bytes back (every value in the vectors differs from its default, so
// an item the reader dropped shows up), and checks Measure() against them.
// A block whose read changes a value (a lent user name) does neither.
template <typename Block>
Block RoundTrip(const std::string& hex, bool rewrites = true) {
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

template <typename Block>
std::pair<std::string, void (*)(const std::string&)> Check() {
  return {Block::kName, [](const std::string& hex) { RoundTrip<Block>(hex); }};
}

TEST(OpaqueBlocksTest, GoldenBytesBothWays) {
  const std::map<std::string, void (*)(const std::string&)> checks = {
      Check<OpaqueRequestMessageBlock>(),
      Check<OpaqueResponseMessageBlock>(),
      Check<ServerVersionRequestBlock>(),
      Check<ServerVersionResponseBlock>(),
      Check<ImpersonateUserRequestBlock>(),
      Check<SupportedExchangeResponseBlock>(),
      Check<PushMGTResponseBlock>(),
      Check<ImpersonateUserResponseBlock>(),
      Check<SupportedExchangeRequestBlock>(),
      Check<ServerInstanceIDRequestMessageBlock>(),
      Check<ConnectMessageBlock>(),
      Check<ConnectResponseMessageBlock>(),
      Check<DisconnectMessageBlock>(),
      Check<StringMessageBlock>(),
      Check<CancelSubscriptionMessageBlock>(),
      Check<ServerInstanceIDResponseBlock>(),
      Check<ImpersonationDataStreamableList>()};
  std::set<std::string> seen;
  for (const auto& row : nvshared::testing::ReadTestTable(
           "nvshared/messaging/testdata/opaque_blocks.txt", 2)) {
    SCOPED_TRACE(row.where);
    ASSERT_EQ(checks.count(row[0]), 1u) << row[0];
    checks.at(row[0])(row[1]);
    seen.insert(row[0]);
  }
  EXPECT_EQ(seen.size(), checks.size());
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
