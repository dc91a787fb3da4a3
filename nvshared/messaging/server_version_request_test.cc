#include "nvshared/messaging/server_version_request.h"

#include <initializer_list>
#include <string>

#include <gtest/gtest.h>

#include "nvshared/messaging/xstreamable.h"
#include "nvshared/platform/stream/stream.h"

namespace nv_ns {
namespace {

using dv_stream_ns::FastStreamBuffer;
using dv_stream_ns::Stream;
using dv_stream_ns::Streamable;

std::string Bytes(std::initializer_list<int> bytes) {
  std::string out;
  for (int b : bytes) out.push_back(static_cast<char>(b));
  return out;
}

// The request base with all defaults: request id -1, not a subscription,
// both tick counts 0.
const std::string kDefaultBase =
    Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0x00}) + std::string(16, '\0');

// A "SVRP" object holding `info`, built by hand: protocol 1, total length
// 12 + 4 + n, version 0x08000000, name "SVRP" NUL; then the one string item
// 'S', count n + 1, width 1, the characters.
std::string Svrp(const std::string& info) {
  const int total = 12 + 4 + static_cast<int>(info.size());
  const int count = static_cast<int>(info.size()) + 1;
  return Bytes({0x01, total, 0x00, 0x00, 0x00, 0x00, 0x08}) +
         std::string("SVRP\0", 5) + Bytes({'S', count, 0x00, 0x01}) + info;
}

std::string WriteOut(ServerVersionRequest& request, int direction) {
  FastStreamBuffer buffer;
  Stream stream(&buffer);
  request.Transfer(stream, static_cast<Streamable::Direction>(direction));
  return std::string(buffer.data(), buffer.write_position());
}

// Reads a default-based request whose login is "u" and whose "appID" holds
// `appId`.
ServerVersionRequest ReadWithAppId(const std::string& appId) {
  const std::string bytes = kDefaultBase + Bytes({0x01, 'u'}) +
                            Bytes({static_cast<int>(appId.size())}) + appId;
  FastStreamBuffer view(bytes.data(), bytes.size());
  Stream stream(&view);
  ServerVersionRequest request;
  request.Transfer(stream, Streamable::eRead);
  EXPECT_EQ(view.readable(), 0u);
  return request;
}

TEST(ServerVersionRequest, PacksTheApplicationIdAndParametersIntoAppId) {
  ServerVersionRequest request;
  request.m_szUniversalLoginName = "u";
  request.m_szApplicationId = "abc";
  request.m_params.m_szClientInfo = "ci";
  // appID = "abc" NUL + 18-byte SVRP object: 22 bytes.
  const std::string appId = std::string("abc\0", 4) + Svrp("ci");
  ASSERT_EQ(appId.size(), 22u);
  EXPECT_EQ(WriteOut(request, 1),
            kDefaultBase + Bytes({0x01, 'u', 0x16}) + appId);

  const ServerVersionRequest read = ReadWithAppId(appId);
  EXPECT_EQ(read.m_szUniversalLoginName, "u");
  EXPECT_EQ(read.m_szApplicationId, "abc");
  EXPECT_EQ(read.m_params.m_szClientInfo, "ci");
}

TEST(ServerVersionRequest, EmptyIdIsNulThenTheObject) {
  ServerVersionRequest request;
  // "" NUL + 16-byte SVRP object with an empty string: 17 bytes.
  EXPECT_EQ(WriteOut(request, 1),
            kDefaultBase + Bytes({0x00, 0x11, 0x00}) + Svrp(""));
}

TEST(ServerVersionRequest, PeersPlainIdReadsWithDefaultParameters) {
  const ServerVersionRequest read = ReadWithAppId("abc");
  EXPECT_EQ(read.m_szApplicationId, "abc");
  EXPECT_EQ(read.m_params.m_szClientInfo, "");
}

TEST(ServerVersionRequest, NulWithNoObjectRaisesTheShortBufferMessage) {
  try {
    ReadWithAppId(std::string("abc\0", 4));
    FAIL() << "no exception";
  } catch (const StreamingException& e) {
    EXPECT_STREQ(e.what(),
                 "The Buffer length (0 bytes) is less than the header length "
                 "(12 bytes). The object name is 'SVRP'");
  }
}

TEST(ServerVersionRequest, OtherDirectionsWriteAnEmptyIdAndClearIt) {
  ServerVersionRequest request;
  request.m_szApplicationId = "abc";
  request.m_params.m_szClientInfo = "ci";
  EXPECT_EQ(WriteOut(request, 2), kDefaultBase + Bytes({0x00, 0x00}));
  EXPECT_EQ(request.m_szApplicationId, "");
  EXPECT_EQ(request.m_params.m_szClientInfo, "ci");
}

}  // namespace
}  // namespace nv_ns
