// nv_ns::ImpersonateUserRequest (class id 0xFF07): asks the server to act
// for a member, group and trader on an exchange. On the core stream: the
// MessageRouterRequest base, then
//   m_iExchangeId int (4) | m_szMember string | m_szGroup string |
//   m_szTrader string
// Threads: an instance belongs to one thread at a time; Id() is safe from
// any thread.
#ifndef NVSHARED_MESSAGING_IMPERSONATE_USER_REQUEST_H_
#define NVSHARED_MESSAGING_IMPERSONATE_USER_REQUEST_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/messaging/message_router_request.h"

namespace nv_ns {

class NVSHARED_API ImpersonateUserRequest : public MessageRouterRequest {
 public:
  static constexpr unsigned short kClassId = 0xFF07;
  static constexpr char kClassName[] = "ImpersonateUserRequest";

  ImpersonateUserRequest() = default;
  ImpersonateUserRequest(const ImpersonateUserRequest&) = default;
  ImpersonateUserRequest& operator=(const ImpersonateUserRequest&) = default;
  ~ImpersonateUserRequest() override;

  dv_stream_ns::Stream& Transfer(dv_stream_ns::Stream& stream,
                                 Direction direction) override;
  dv_stream_ns::VerClsId Id() const override;

  int m_iExchangeId = 0;
  std::string m_szMember;
  std::string m_szGroup;
  std::string m_szTrader;
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_IMPERSONATE_USER_REQUEST_H_
