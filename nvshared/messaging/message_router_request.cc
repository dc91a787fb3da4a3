#include "nvshared/messaging/message_router_request.h"

namespace nv_ns {

MessageRouterRequest::~MessageRouterRequest() = default;

dv_stream_ns::Stream& MessageRouterRequest::Transfer(
    dv_stream_ns::Stream& stream, Direction direction) {
  Streamable::Transfer(stream, direction);
  stream.Transfer("m_iRequestID", m_iRequestID, direction);
  stream.Transfer("m_bIsSubscription", m_bIsSubscription, direction);
  stream.Transfer("m_tSentTickCount", m_tSentTickCount, direction);
  stream.Transfer("m_tReceivedTickCount", m_tReceivedTickCount, direction);
  return stream;
}

}  // namespace nv_ns
