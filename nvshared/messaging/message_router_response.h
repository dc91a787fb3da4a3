// nv_ns::MessageRouterResponse: the base of the responses a server sends
// through the message router. On the core stream, in this order:
//   m_iConnectionID int (4) | m_iRequestID int (4) |
//   m_tSentTickCount int64 (8) | m_tReceivedTickCount int64 (8)
// 24 bytes on a flat buffer. Unlike the request, the response carries the
// connection id and has no subscription flag.
// Threads: an instance belongs to one thread at a time.
#ifndef NVSHARED_MESSAGING_MESSAGE_ROUTER_RESPONSE_H_
#define NVSHARED_MESSAGING_MESSAGE_ROUTER_RESPONSE_H_

#include <cstdint>

#include "nvshared/export.h"
#include "nvshared/platform/stream/streamable.h"

namespace nv_ns {

class NVSHARED_API MessageRouterResponse : public dv_stream_ns::Streamable {
 public:
  MessageRouterResponse() = default;
  MessageRouterResponse(const MessageRouterResponse&) = default;
  MessageRouterResponse& operator=(const MessageRouterResponse&) = default;
  ~MessageRouterResponse() override;

  dv_stream_ns::Stream& Transfer(dv_stream_ns::Stream& stream,
                                 Direction direction) override;

  int m_iConnectionID = -1;
  int m_iRequestID = -1;
  std::int64_t m_tSentTickCount = 0;
  std::int64_t m_tReceivedTickCount = 0;
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_MESSAGE_ROUTER_RESPONSE_H_
