// nv_ns::MessageRouterRequest: the base of the requests a client sends
// through the message router. On the core stream, in this order:
//   m_iRequestID int (4) | m_bIsSubscription bool (1) |
//   m_tSentTickCount int64 (8) | m_tReceivedTickCount int64 (8)
// m_iConnectionID is not carried: the router sets it on the side that
// holds the connection, so after a read it keeps its default.
// Threads: an instance belongs to one thread at a time.
#ifndef NVSHARED_MESSAGING_MESSAGE_ROUTER_REQUEST_H_
#define NVSHARED_MESSAGING_MESSAGE_ROUTER_REQUEST_H_

#include <cstdint>

#include "nvshared/export.h"
#include "nvshared/platform/stream/streamable.h"

namespace nv_ns {

class NVSHARED_API MessageRouterRequest : public dv_stream_ns::Streamable {
 public:
  MessageRouterRequest() = default;
  MessageRouterRequest(const MessageRouterRequest&) = default;
  MessageRouterRequest& operator=(const MessageRouterRequest&) = default;
  ~MessageRouterRequest() override;

  dv_stream_ns::Stream& Transfer(dv_stream_ns::Stream& stream,
                                 Direction direction) override;

  int m_iConnectionID = -1;
  int m_iRequestID = -1;
  bool m_bIsSubscription = false;
  std::int64_t m_tSentTickCount = 0;
  std::int64_t m_tReceivedTickCount = 0;
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_MESSAGE_ROUTER_REQUEST_H_
