#include "nvshared/messaging/message_router_response.h"

namespace nv_ns {

MessageRouterResponse::~MessageRouterResponse() = default;

dv_stream_ns::Stream& MessageRouterResponse::Transfer(
    dv_stream_ns::Stream& stream, Direction direction) {
  Streamable::Transfer(stream, direction);
  stream.Transfer("m_iConnectionID", m_iConnectionID, direction);
  stream.Transfer("m_iRequestID", m_iRequestID, direction);
  stream.Transfer("m_tSentTickCount", m_tSentTickCount, direction);
  stream.Transfer("m_tReceivedTickCount", m_tReceivedTickCount, direction);
  return stream;
}

}  // namespace nv_ns
