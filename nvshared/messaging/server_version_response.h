// nv_ns::ServerVersionResponse (class id 0xFF40): the server's answer to a
// ServerVersionRequest, naming the server, its version and its engine. On
// the core stream: the MessageRouterResponse base, then
//   m_iExchangeID int (4) | m_serverId string | m_serverVersion string |
//   m_engineVersion string | "temp" int (4) = m_engineType
// Threads: an instance belongs to one thread at a time; Id() is safe from
// any thread.
#ifndef NVSHARED_MESSAGING_SERVER_VERSION_RESPONSE_H_
#define NVSHARED_MESSAGING_SERVER_VERSION_RESPONSE_H_

#include <cstdint>
#include <string>

#include "nvshared/export.h"
#include "nvshared/messaging/message_router_response.h"

namespace nv_ns {

class NVSHARED_API ServerVersionResponse : public MessageRouterResponse {
 public:
  static constexpr unsigned short kClassId = 0xFF40;
  static constexpr char kClassName[] = "ServerVersionResponse";

  // The kind of engine behind the server; the values are the server's.
  enum EngineType : std::int32_t { eEngineTypeUnknown = -1 };

  ServerVersionResponse() = default;
  ServerVersionResponse(const ServerVersionResponse&) = default;
  ServerVersionResponse& operator=(const ServerVersionResponse&) = default;
  ~ServerVersionResponse() override;

  dv_stream_ns::Stream& Transfer(dv_stream_ns::Stream& stream,
                                 Direction direction) override;
  dv_stream_ns::VerClsId Id() const override;

  int m_iExchangeID = -1;
  std::string m_serverId;
  std::string m_serverVersion;
  std::string m_engineVersion;
  EngineType m_engineType = eEngineTypeUnknown;
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_SERVER_VERSION_RESPONSE_H_
