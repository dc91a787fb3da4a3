#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/messaging/impersonate_user_request.h"
#include "nvshared/messaging/impersonate_user_response.h"
#include "nvshared/messaging/internal/class_id_once.h"
#include "nvshared/messaging/message_router_request.h"
#include "nvshared/messaging/message_router_response.h"
#include "nvshared/messaging/server_version_response.h"
#include "nvshared/platform/stream/stream_exceptions.h"

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

std::string WriteOut(Streamable& message) {
  FastStreamBuffer buffer;
  Stream stream(&buffer);
  message.Transfer(stream, Streamable::eWrite);
  return std::string(buffer.data(), buffer.write_position());
}

// Reads `bytes` into `message`; fails the test unless all were used.
void ReadIn(Streamable& message, const std::string& bytes) {
  FastStreamBuffer view(bytes.data(), bytes.size());
  Stream stream(&view);
  message.Transfer(stream, Streamable::eRead);
  EXPECT_EQ(view.readable(), 0u);
}

// m_iRequestID 0x01020304, m_bIsSubscription true, sent 5, received -1.
const std::string kRequestBase =
    Bytes({0x04, 0x03, 0x02, 0x01, 0x01,                 //
           0x05, 0,    0,    0,    0,    0,    0,    0,  //
           0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
void FillRequestBase(MessageRouterRequest& m) {
  m.m_iConnectionID = 9;  // not on the stream
  m.m_iRequestID = 0x01020304;
  m.m_bIsSubscription = true;
  m.m_tSentTickCount = 5;
  m.m_tReceivedTickCount = -1;
}

// m_iConnectionID 3, m_iRequestID -1, sent 0x0102, received 0.
const std::string kResponseBase =
    Bytes({0x03, 0,    0, 0, 0xFF, 0xFF, 0xFF, 0xFF,  //
           0x02, 0x01, 0, 0, 0,    0,    0,    0,     //
           0,    0,    0, 0, 0,    0,    0,    0});
void FillResponseBase(MessageRouterResponse& m) {
  m.m_iConnectionID = 3;
  m.m_tSentTickCount = 0x0102;
}

struct MessageCase {
  const char* name;
  std::function<std::unique_ptr<Streamable>(bool filled)> make;
  std::string bytes;
};

std::vector<MessageCase> MessageCases() {
  return {
      {"MessageRouterRequest",
       [](bool filled) {
         auto m = std::make_unique<MessageRouterRequest>();
         if (filled) FillRequestBase(*m);
         return m;
       },
       kRequestBase},
      {"MessageRouterResponse",
       [](bool filled) {
         auto m = std::make_unique<MessageRouterResponse>();
         if (filled) FillResponseBase(*m);
         return m;
       },
       kResponseBase},
      {"ImpersonateUserRequest",
       [](bool filled) {
         auto m = std::make_unique<ImpersonateUserRequest>();
         if (filled) {
           FillRequestBase(*m);
           m->m_iExchangeId = 7;
           m->m_szMember = "M1";
           m->m_szGroup = "G";
         }
         return m;
       },
       // exchange 7 | "M1" | "G" | "" (trader)
       kRequestBase + Bytes({0x07, 0, 0, 0, 0x02, 'M', '1', 0x01, 'G', 0x00})},
      {"ServerVersionResponse",
       [](bool filled) {
         auto m = std::make_unique<ServerVersionResponse>();
         if (filled) {
           FillResponseBase(*m);
           m->m_iExchangeID = 30;
           m->m_serverId = "S";
           m->m_serverVersion = "1.0";
           m->m_engineType = static_cast<ServerVersionResponse::EngineType>(2);
         }
         return m;
       },
       // exchange 30 | "S" | "1.0" | "" (engine version) | temp 2
       kResponseBase + Bytes({0x1E, 0, 0, 0, 0x01, 'S', 0x03, '1', '.', '0',
                              0x00, 0x02, 0, 0, 0})},
      {"ImpersonateUserResponse",
       [](bool filled) {
         auto m = std::make_unique<ImpersonateUserResponse>();
         if (filled) FillResponseBase(*m);
         return m;
       },
       kResponseBase},
  };
}

TEST(RouterMessages, WriteTheirMembersInOrderAndReadThemBack) {
  for (const MessageCase& c : MessageCases()) {
    SCOPED_TRACE(c.name);
    auto written = c.make(true);
    EXPECT_EQ(WriteOut(*written), c.bytes);
    auto read = c.make(false);
    ReadIn(*read, c.bytes);
    EXPECT_EQ(WriteOut(*read), c.bytes);
  }
}

TEST(RouterMessages, EveryCutShortBufferUnderflows) {
  for (const MessageCase& c : MessageCases()) {
    for (std::size_t size = 0; size < c.bytes.size(); ++size) {
      SCOPED_TRACE(std::string(c.name) + " cut to " + std::to_string(size));
      const std::string cut = c.bytes.substr(0, size);
      FastStreamBuffer view(cut.data(), cut.size());
      Stream stream(&view);
      auto m = c.make(false);
      EXPECT_THROW(m->Transfer(stream, Streamable::eRead),
                   dv_stream_ns::StreamUnderflow);
    }
  }
}

TEST(RouterMessages, DefaultsAndTheFieldsThatTravel) {
  ImpersonateUserResponse response;
  EXPECT_EQ(WriteOut(response),
            Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  //
                   0,    0,    0,    0,    0,    0,    0,    0,
                   0,    0,    0,    0,    0,    0,    0,    0}));

  // The request's connection id stays on the sending side.
  MessageRouterRequest request;
  ReadIn(request, kRequestBase);
  EXPECT_EQ(request.m_iConnectionID, -1);
  EXPECT_EQ(request.m_iRequestID, 0x01020304);
  EXPECT_TRUE(request.m_bIsSubscription);

  ServerVersionResponse version;
  EXPECT_EQ(version.m_engineType, -1);
  ReadIn(version,
         kResponseBase + Bytes({0, 0, 0, 0, 0, 0, 0, 0xFE, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(version.m_engineType, -2);
  EXPECT_EQ(version.m_iConnectionID, 3);
}

TEST(RouterMessages, IdsCarryTheClassIdAndAnEmptyName) {
  using dv_stream_ns::VerClsId;
  EXPECT_EQ(ImpersonateUserRequest().Id(), (VerClsId{65287, ""}));
  EXPECT_EQ(ServerVersionResponse().Id(), (VerClsId{65344, ""}));
  EXPECT_EQ(ImpersonateUserResponse().Id(), (VerClsId{65345, ""}));
  EXPECT_EQ(MessageRouterRequest().Id(), VerClsId{});
}

TEST(RouterMessages, IdConcurrencyBuildsOnceAndAgreesEverywhere) {
  internal::ClassIdOnce once;
  std::vector<std::thread> threads;
  std::vector<dv_stream_ns::VerClsId> seen(8), messages(8);
  for (std::size_t t = 0; t < seen.size(); ++t) {
    threads.emplace_back([&, t] {
      // Each thread asks with its own id: all must get the one value that
      // whichever came first built.
      seen[t] = once.Get(t == 0 ? 0xFF06 : 0xFF06 + t);
      messages[t] = ImpersonateUserResponse().Id();
    });
  }
  for (auto& thread : threads) thread.join();
  for (std::size_t t = 0; t < seen.size(); ++t) {
    EXPECT_EQ(seen[t], seen[0]);
    EXPECT_LT(seen[t].classId - 0xFF06, 8);
    EXPECT_EQ(messages[t].classId, 0xFF41);
  }
}

}  // namespace
}  // namespace nv_ns
