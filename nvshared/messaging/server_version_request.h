// nv_ns::ServerVersionRequest (class id 0xFF06): the client's opening
// request, with its login name, its application id and the parameters of
// its client. On the core stream: the MessageRouterRequest base, then
//   m_szUniversalLoginName string | "appID" string
// where "appID" packs the rest:
//   appID := m_szApplicationId [ NUL svrp ]
//   svrp  := m_params as a tagged "SVRP" object
// A peer that knows nothing of the parameters sends a plain application id,
// which reads correctly and leaves m_params at its defaults. A bad "SVRP"
// part raises StreamingException out of the read.
// Threads: an instance belongs to one thread at a time; Id() is safe from
// any thread.
#ifndef NVSHARED_MESSAGING_SERVER_VERSION_REQUEST_H_
#define NVSHARED_MESSAGING_SERVER_VERSION_REQUEST_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/messaging/message_router_request.h"
#include "nvshared/messaging/server_version_request_params.h"

namespace nv_ns {

class NVSHARED_API ServerVersionRequest : public MessageRouterRequest {
 public:
  static constexpr unsigned short kClassId = 0xFF06;
  static constexpr char kClassName[] = "ServerVersionRequest";

  ServerVersionRequest() = default;
  ServerVersionRequest(const ServerVersionRequest&) = default;
  ServerVersionRequest& operator=(const ServerVersionRequest&) = default;
  ~ServerVersionRequest() override;

  // Direction 1 writes and 0 reads. Any other direction writes the base
  // and the login name, then an empty "appID", and takes that empty string
  // as if it had been read: m_szApplicationId is cleared and m_params is
  // left as it is. This is deliberate; only direction 1 packs the id.
  dv_stream_ns::Stream& Transfer(dv_stream_ns::Stream& stream,
                                 Direction direction) override;
  dv_stream_ns::VerClsId Id() const override;

  std::string m_szUniversalLoginName;
  std::string m_szApplicationId;
  ServerVersionRequestParams m_params;
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_SERVER_VERSION_REQUEST_H_
