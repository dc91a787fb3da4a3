#include "nvshared/messaging/impersonate_user_request.h"

#include "nvshared/messaging/internal/class_id_once.h"

namespace nv_ns {
namespace {
constinit internal::ClassIdOnce g_classId;
}  // namespace

ImpersonateUserRequest::~ImpersonateUserRequest() = default;

dv_stream_ns::Stream& ImpersonateUserRequest::Transfer(
    dv_stream_ns::Stream& stream, Direction direction) {
  MessageRouterRequest::Transfer(stream, direction);
  stream.Transfer("m_iExchangeId", m_iExchangeId, direction);
  stream.Transfer("m_szMember", m_szMember, direction);
  stream.Transfer("m_szGroup", m_szGroup, direction);
  stream.Transfer("m_szTrader", m_szTrader, direction);
  return stream;
}

dv_stream_ns::VerClsId ImpersonateUserRequest::Id() const {
  return g_classId.Get(kClassId);
}

}  // namespace nv_ns
