// The records' wire forms, built by hand from their item tables, and their
// constructors.
#include "nvshared/messaging/connection_key.h"

#include <string>

#include <gtest/gtest.h>

#include "nvshared/messaging/server_version_request_params.h"
#include "nvshared/messaging/spread_info.h"
#include "nvshared/testing/hex_bytes.h"
#include "nvshared/testing/wire_bytes.h"

namespace nv_ns {
namespace {

using nvshared::testing::HexBytes;
using nvshared::testing::ToHex;
using nvshared::testing::XStreamBytes;

// ConnectionKey(5, 7, 3, "M", "G", "T"): 12 + 29 bytes.
const std::string kKeyBytes = HexBytes(
    "01 29 00 | 03 00 00 00 | 'C' 'K' 00 00 00"
    "| 54 02 05 00"        // m_brokerID 5
    "| 54 04 03 00 00 00"  // m_gatewayID 3
    "| 43 02 00 01 'M'"    // m_szMember
    "| 43 02 00 01 'G'"    // m_szGroup
    "| 43 02 00 01 'T'"    // m_szTrader
    "| 54 02 07 00");      // m_companyID 7

// A default SpreadInfo: 12 + 30 bytes.
const std::string kSpreadBytes = HexBytes(
    "01 2a 00 | 03 00 00 08 | 'A' 'S' 'A' 'P' 00"
    "| 53 01 00 01 | 53 01 00 01"  // m_name, m_id: empty
    "| 54 04 ff ff ff 00"          // m_color 0xFFFFFF
    "| 54 04 00 00 00 00"          // m_numLegs
    "| 54 01 00 | 54 02 00 00 | 54 01 00");

// ServerVersionRequestParams with client info "ab": 12 + 6 bytes.
const std::string kParamsBytes = HexBytes(
    "01 12 00 | 00 00 00 08 | 'S' 'V' 'R' 'P' 00 | 53 03 00 01 'a' 'b'");

TEST(RecordsTest, GoldenBytesBothWays) {
  EXPECT_EQ(ToHex(XStreamBytes(ConnectionKey(5, 7, 3, "M", "G", "T"))),
            ToHex(kKeyBytes));
  EXPECT_EQ(ToHex(XStreamBytes(SpreadInfo())), ToHex(kSpreadBytes));
  ServerVersionRequestParams params;
  params.m_szClientInfo = "ab";
  EXPECT_EQ(ToHex(XStreamBytes(params)), ToHex(kParamsBytes));

  ConnectionKey key;
  EXPECT_EQ(key.ReadFrom(kKeyBytes.data(), kKeyBytes.size()), 41u);
  EXPECT_EQ(key.ToString(),
            "Broker: 5Company: 7 Gateway: 3 Member: M Group: G Trader: T");
  EXPECT_EQ(key.Measure() + 12, 41u);

  // No value at its default: writing what was read gives the same bytes.
  SpreadInfo spread("Cal", "ID9", 0x123456789ul, 2, true, 4, true);
  SpreadInfo read_back;
  const std::string bytes = XStreamBytes(spread);
  EXPECT_EQ(bytes.size(), 12 + spread.Measure());
  read_back.ReadFrom(bytes.data(), bytes.size());
  EXPECT_EQ(read_back.m_color, 0x23456789ul);  // 32 bits on the wire
  EXPECT_EQ(XStreamBytes(read_back), bytes);

  ServerVersionRequestParams params_back;
  params_back.ReadFrom(kParamsBytes.data(), kParamsBytes.size());
  EXPECT_EQ(params_back.m_szClientInfo, "ab");
}

TEST(RecordsTest, CharArraysOnTheWire) {
  // A member of 12 characters fills the field, with no terminator; the
  // key still measures and prints it whole.
  const std::string bytes = HexBytes(
      "01 32 00 | 03 00 00 00 | 'C' 'K' 00 00 00 | 54 02 05 00"
      "| 54 04 03 00 00 00 | 43 0d 00 01"
      "'A' 'B' 'C' 'D' 'E' 'F' 'G' 'H' 'I' 'J' 'K' 'L'"
      "| 43 01 00 01 | 43 01 00 01 | 54 02 07 00");
  ConnectionKey key(1, 1, 1, "member", "grp", "trader");
  key.ReadFrom(bytes.data(), bytes.size());
  EXPECT_EQ(std::string(key.m_szMember, 12), "ABCDEFGHIJKL");
  // An empty array reads back as zero bytes over the whole field.
  EXPECT_EQ(std::string(key.m_szTrader, 12), std::string(12, '\0'));
  EXPECT_EQ(key.Measure(), 38u);
  EXPECT_EQ(key.ToString(),
            "Broker: 5Company: 7 Gateway: 3 Member: ABCDEFGHIJKL Group:  "
            "Trader: ");
}

class FakeConnection : public IConnectionInfo {
 public:
  int GetGatewayId() const override { return 9; }
  unsigned short GetBrokerId() const override { return 2; }
  unsigned short GetCompanyId() const override { return 3; }
  const char* GetMember() const override { return "MEMBER123456789"; }
  const char* GetGroup() const override { return nullptr; }
  const char* GetTrader() const override { return "TR"; }
};

TEST(RecordsTest, ConnectionKeyConstructors) {
  const ConnectionKey none(nullptr);
  EXPECT_EQ(none.m_gatewayID, -1);
  EXPECT_EQ(none.ToString(),
            "Broker: 0Company: 0 Gateway: -1 Member:  Group:  Trader: ");

  const FakeConnection connection;
  const ConnectionKey from_info(&connection);
  EXPECT_EQ(from_info.ToString(),
            "Broker: 2Company: 3 Gateway: 9 Member: MEMBER12345 Group:  "
            "Trader: TR");

  const ConnectionKey cut(1, 2, 3, "123456789012345", "GROUP", nullptr);
  EXPECT_STREQ(cut.m_szMember, "12345678901");
  EXPECT_STREQ(cut.m_szGroup, "GRO");
  EXPECT_STREQ(cut.m_szTrader, "");
}

}  // namespace
}  // namespace nv_ns
