#include "nvshared/messaging/common_messages.h"

#include <new>

#include "nvshared/messaging/impersonate_user_request.h"
#include "nvshared/messaging/impersonate_user_response.h"
#include "nvshared/messaging/server_version_request.h"
#include "nvshared/messaging/server_version_response.h"

namespace nv_ns {
namespace {

template <class Message, class Router>
void Register(Router& router) {
  router.RegisterMessageFactory(Message::kClassId, Message::kClassName,
                                new (std::nothrow)
                                    dv_stream_ns::VIAFactory<Message>);
}

template <class Router>
void RegisterAll(Router* router) {
  if (router == nullptr) return;
  Register<ServerVersionRequest>(*router);
  Register<ServerVersionResponse>(*router);
  Register<ImpersonateUserRequest>(*router);
  Register<ImpersonateUserResponse>(*router);
}

}  // namespace

// Defined here as well, so that code may bind them to references.
const int CommonMessages::eCommonRequestBaseEnd_cc;
const int CommonMessages::eCommonResponseBaseEnd_cc;

MessageRouterClient::~MessageRouterClient() = default;
MessageRouterServer::~MessageRouterServer() = default;

void CommonMessages::Init(MessageRouterClient* router) { RegisterAll(router); }
void CommonMessages::Init(MessageRouterServer* router) { RegisterAll(router); }

}  // namespace nv_ns
