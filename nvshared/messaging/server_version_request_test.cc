#include "nvshared/messaging/server_version_request.h"

#include <string>

#include <gtest/gtest.h>

#include "nvshared/messaging/xstreamable.h"
#include "nvshared/platform/stream/stream.h"
#include "nvshared/testing/hex_bytes.h"
#include "nvshared/testing/message_of.h"
#include "nvshared/testing/wire_bytes.h"

namespace nv_ns {
namespace {

using dv_stream_ns::FastStreamBuffer;
using dv_stream_ns::Stream;
using dv_stream_ns::Streamable;
using nvshared::testing::HexBytes;
using nvshared::testing::MessageOf;
using nvshared::testing::StreamBytes;

// The request base with all defaults: request id -1, not a subscription,
// both tick counts 0; then the login name "u".
const std::string kHead =
    HexBytes("ff ff ff ff | 00 |" + std::string(32, '0') + "| 01 'u'");

// "SVRP" objects by hand: protocol 1, total length (2 bytes), version
// 0x08000000, name "SVRP" NUL; one string item 'S', count = length + 1,
// width 1, the characters. 12 + 4 + 2 = 18 bytes with "ci", 16 empty.
const std::string kSvrpCi = HexBytes(
    "01 12 00 | 00 00 00 08 | 'S' 'V' 'R' 'P' 00 | 'S' 03 00 01 'c' 'i'");
const std::string kSvrpEmpty =
    HexBytes("01 10 00 | 00 00 00 08 | 'S' 'V' 'R' 'P' 00 | 'S' 01 00 01");

ServerVersionRequest ReadWithAppId(const std::string& appId) {
  const std::string bytes =
      kHead + std::string(1, static_cast<char>(appId.size())) + appId;
  FastStreamBuffer view(bytes.data(), bytes.size());
  Stream stream(&view);
  ServerVersionRequest request;
  request.Transfer(stream, Streamable::eRead);
  EXPECT_EQ(view.readable(), 0u);
  return request;
}

TEST(ServerVersionRequest, PacksIdNulAndParametersIntoAppId) {
  ServerVersionRequest request;
  request.m_szUniversalLoginName = "u";
  request.m_szApplicationId = "abc";
  request.m_params.m_szClientInfo = "ci";
  // appID: "abc" NUL + 18 bytes = 22 (0x16).
  const std::string appId = std::string("abc\0", 4) + kSvrpCi;
  EXPECT_EQ(StreamBytes(request, 1), kHead + HexBytes("16") + appId);
  const ServerVersionRequest read = ReadWithAppId(appId);
  EXPECT_EQ(read.m_szUniversalLoginName + read.m_szApplicationId, "uabc");
  EXPECT_EQ(read.m_params.m_szClientInfo, "ci");

  // An empty id is NUL and the object: 17 bytes.
  ServerVersionRequest empty;
  empty.m_szUniversalLoginName = "u";
  EXPECT_EQ(StreamBytes(empty, 1), kHead + HexBytes("11 00") + kSvrpEmpty);
}

TEST(ServerVersionRequest, LongParametersPackTheSameWay) {
  // Past the writer's stack buffer: 300 + 1 + 12 + 4 + 300 bytes.
  ServerVersionRequest request;
  request.m_szUniversalLoginName = "u";
  request.m_szApplicationId = std::string(300, 'a');
  request.m_params.m_szClientInfo = std::string(300, 'c');
  std::string svrp;
  ServerVersionRequestParams(request.m_params).WriteToString(svrp);
  const std::string appId = request.m_szApplicationId + '\0' + svrp;
  // 617 bytes: varint 0x84 0x69.
  EXPECT_EQ(StreamBytes(request, 1), kHead + HexBytes("84 69") + appId);
}

TEST(ServerVersionRequest, ReadsAPeersPlainIdButNotANulWithoutTheObject) {
  const ServerVersionRequest read = ReadWithAppId("abc");
  EXPECT_EQ(read.m_szApplicationId, "abc");
  EXPECT_EQ(read.m_params.m_szClientInfo, "");
  EXPECT_EQ(MessageOf([] { ReadWithAppId(std::string("abc\0", 4)); }),
            "The Buffer length (0 bytes) is less than the header length (12 "
            "bytes). The object name is 'SVRP'");
}

TEST(ServerVersionRequest, OtherDirectionsWriteAnEmptyIdAndClearIt) {
  ServerVersionRequest request;
  request.m_szUniversalLoginName = "u";
  request.m_szApplicationId = "abc";
  request.m_params.m_szClientInfo = "ci";
  EXPECT_EQ(StreamBytes(request, 2), kHead + HexBytes("00"));
  EXPECT_EQ(request.m_szApplicationId, "");
  EXPECT_EQ(request.m_params.m_szClientInfo, "ci");
}

}  // namespace
}  // namespace nv_ns
