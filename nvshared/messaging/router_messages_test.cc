#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/messaging/impersonate_user_request.h"
#include "nvshared/messaging/impersonate_user_response.h"
#include "nvshared/messaging/internal/class_id_once.h"
#include "nvshared/messaging/server_version_response.h"
#include "nvshared/platform/stream/stream_exceptions.h"
#include "nvshared/testing/hex_bytes.h"
#include "nvshared/testing/wire_bytes.h"

namespace nv_ns {
namespace {

using dv_stream_ns::FastStreamBuffer;
using dv_stream_ns::Stream;
using dv_stream_ns::Streamable;
using nvshared::testing::HexBytes;
using nvshared::testing::StreamBytes;

// Reads all of `bytes` into `message`.
void ReadIn(Streamable& message, const std::string& bytes) {
  FastStreamBuffer view(bytes.data(), bytes.size());
  Stream stream(&view);
  message.Transfer(stream, Streamable::eRead);
  EXPECT_EQ(view.readable(), 0u);
}

// Request id 0x01020304, a subscription, sent 5, received -1; the
// connection id 9 is not written.
constexpr char kRequestBase[] =
    "04 03 02 01 | 01 | 05 00 00 00 00 00 00 00 | ff ff ff ff ff ff ff ff |";
void FillRequestBase(MessageRouterRequest& m) {
  m.m_iConnectionID = 9;
  m.m_iRequestID = 0x01020304;
  m.m_bIsSubscription = true;
  m.m_tSentTickCount = 5;
  m.m_tReceivedTickCount = -1;
}

// Connection id 3, request id -1, sent 0x0102, received 0.
constexpr char kResponseBase[] =
    "03 00 00 00 | ff ff ff ff | 02 01 00 00 00 00 00 00 |"
    "00 00 00 00 00 00 00 00 |";
void FillResponseBase(MessageRouterResponse& m) {
  m.m_iConnectionID = 3;
  m.m_tSentTickCount = 0x0102;
}

template <class T>
std::function<std::unique_ptr<Streamable>(bool)> Maker(
    std::function<void(T&)> fill) {
  return [fill](bool filled) {
    auto m = std::make_unique<T>();
    if (filled) fill(*m);
    return m;
  };
}

struct MessageCase {
  const char* name;
  std::function<std::unique_ptr<Streamable>(bool filled)> make;
  std::string bytes;
};

std::vector<MessageCase> MessageCases() {
  return {
      {"MessageRouterRequest", Maker<MessageRouterRequest>(FillRequestBase),
       HexBytes(kRequestBase)},
      {"MessageRouterResponse", Maker<MessageRouterResponse>(FillResponseBase),
       HexBytes(kResponseBase)},
      {"ImpersonateUserRequest",
       Maker<ImpersonateUserRequest>([](ImpersonateUserRequest& m) {
         FillRequestBase(m);
         m.m_iExchangeId = 7;
         m.m_szMember = "M1";
         m.m_szGroup = "G";
       }),
       // exchange 7 | "M1" | "G" | "" (trader)
       HexBytes(std::string(kRequestBase) +
                "07 00 00 00 | 02 'M' '1' | 01 'G' | 00")},
      {"ServerVersionResponse",
       Maker<ServerVersionResponse>([](ServerVersionResponse& m) {
         FillResponseBase(m);
         m.m_iExchangeID = 30;
         m.m_serverId = "S";
         m.m_serverVersion = "1.0";
         m.m_engineType = static_cast<ServerVersionResponse::EngineType>(-2);
       }),
       // exchange 30 | "S" | "1.0" | "" (engine version) | temp -2
       HexBytes(std::string(kResponseBase) +
                "1e 00 00 00 | 01 'S' | 03 '1' '.' '0' | 00 | fe ff ff ff")},
      {"ImpersonateUserResponse, 24 bytes of defaults",
       Maker<ImpersonateUserResponse>([](ImpersonateUserResponse&) {}),
       HexBytes("ff ff ff ff ff ff ff ff" + std::string(32, '0'))},
  };
}

TEST(RouterMessages, WriteTheirMembersInOrderAndReadThemBack) {
  for (const MessageCase& c : MessageCases()) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(StreamBytes(*c.make(true)), c.bytes);
    auto read = c.make(false);
    ReadIn(*read, c.bytes);
    EXPECT_EQ(StreamBytes(*read), c.bytes);
    // Every buffer cut short underflows.
    for (std::size_t size = 0; size < c.bytes.size(); ++size) {
      const std::string cut = c.bytes.substr(0, size);
      FastStreamBuffer view(cut.data(), cut.size());
      Stream stream(&view);
      EXPECT_THROW(c.make(false)->Transfer(stream, Streamable::eRead),
                   dv_stream_ns::StreamUnderflow)
          << size;
    }
  }
}

TEST(RouterMessages, RequestConnectionIdStaysOnTheSendingSide) {
  MessageRouterRequest request;
  ReadIn(request, HexBytes(kRequestBase));
  EXPECT_EQ(request.m_iConnectionID, -1);
  EXPECT_EQ(request.Id(), dv_stream_ns::VerClsId{});  // the bases have none
}

TEST(RouterMessages, IdConcurrencyBuildsOnceAndAgreesEverywhere) {
  internal::ClassIdOnce once;
  std::vector<std::thread> threads;
  std::vector<dv_stream_ns::VerClsId> seen(8), messages(8);
  for (std::size_t t = 0; t < seen.size(); ++t) {
    threads.emplace_back([&, t] {
      // Each thread asks with its own id: all must get the one value that
      // whichever came first built.
      seen[t] = once.Get(static_cast<unsigned short>(0xFF06 + t));
      messages[t] = ImpersonateUserResponse().Id();
    });
  }
  for (auto& thread : threads) thread.join();
  for (std::size_t t = 0; t < seen.size(); ++t) {
    EXPECT_EQ(seen[t], seen[0]);
    EXPECT_EQ(messages[t].classId, 0xFF41);
  }
  EXPECT_LT(seen[0].classId - 0xFF06, 8);
}

}  // namespace
}  // namespace nv_ns
