// nv_ns::ImpersonateUserResponse (class id 0xFF41): the server's answer to
// an ImpersonateUserRequest. It adds nothing to MessageRouterResponse, so
// on a flat buffer it is the base's 24 bytes.
// Threads: an instance belongs to one thread at a time; Id() is safe from
// any thread.
#ifndef NVSHARED_MESSAGING_IMPERSONATE_USER_RESPONSE_H_
#define NVSHARED_MESSAGING_IMPERSONATE_USER_RESPONSE_H_

#include "nvshared/export.h"
#include "nvshared/messaging/message_router_response.h"

namespace nv_ns {

class NVSHARED_API ImpersonateUserResponse : public MessageRouterResponse {
 public:
  static constexpr unsigned short kClassId = 0xFF41;
  static constexpr char kClassName[] = "ImpersonateUserResponse";

  ImpersonateUserResponse() = default;
  ImpersonateUserResponse(const ImpersonateUserResponse&) = default;
  ImpersonateUserResponse& operator=(const ImpersonateUserResponse&) = default;
  ~ImpersonateUserResponse() override;

  dv_stream_ns::Stream& Transfer(dv_stream_ns::Stream& stream,
                                 Direction direction) override;
  dv_stream_ns::VerClsId Id() const override;
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_IMPERSONATE_USER_RESPONSE_H_
