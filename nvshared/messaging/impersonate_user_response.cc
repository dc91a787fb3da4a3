#include "nvshared/messaging/impersonate_user_response.h"

#include "nvshared/messaging/internal/class_id_once.h"

namespace nv_ns {
namespace {
constinit internal::ClassIdOnce g_classId;
}  // namespace

ImpersonateUserResponse::~ImpersonateUserResponse() = default;

dv_stream_ns::Stream& ImpersonateUserResponse::Transfer(
    dv_stream_ns::Stream& stream, Direction direction) {
  return MessageRouterResponse::Transfer(stream, direction);
}

dv_stream_ns::VerClsId ImpersonateUserResponse::Id() const {
  return g_classId.Get(kClassId);
}

}  // namespace nv_ns
