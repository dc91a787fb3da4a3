// nv_ns::MessageRouterClient and nv_ns::MessageRouterServer: the two kinds
// of message router of the host's message layer. This library only hands
// them factories of its message classes (CommonMessages::Init); the hosts
// provide the routers.
#ifndef NVSHARED_MESSAGING_MESSAGE_ROUTER_H_
#define NVSHARED_MESSAGING_MESSAGE_ROUTER_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/platform/stream/via_factory.h"

namespace nv_ns {

class NVSHARED_API MessageRouterClient {
 public:
  virtual ~MessageRouterClient();

  // Registers `factory` for the class with id `id`, named `className`. The
  // router takes ownership of the factory, which may be null when memory
  // ran out making it. This library does not use the result.
  virtual bool RegisterMessageFactory(
      unsigned short id, const std::string& className,
      dv_stream_ns::VIAFactoryBase* factory) = 0;
};

class NVSHARED_API MessageRouterServer {
 public:
  virtual ~MessageRouterServer();

  // As MessageRouterClient::RegisterMessageFactory.
  virtual bool RegisterMessageFactory(
      unsigned short id, const std::string& className,
      dv_stream_ns::VIAFactoryBase* factory) = 0;
};

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_MESSAGE_ROUTER_H_
