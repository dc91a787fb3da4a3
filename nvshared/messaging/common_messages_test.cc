#include "nvshared/messaging/common_messages.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace nv_ns {
namespace {

using dv_stream_ns::Streamable;
using dv_stream_ns::VIAFactoryBase;

struct Registration {
  unsigned short id;
  std::string name;
  std::unique_ptr<VIAFactoryBase> factory;
};

// A router that keeps what it is given, in order, and owns the factories.
template <class Base>
class RecordingRouter : public Base {
 public:
  bool RegisterMessageFactory(unsigned short id, const std::string& className,
                              VIAFactoryBase* factory) override {
    registered.push_back(
        {id, className, std::unique_ptr<VIAFactoryBase>(factory)});
    return true;
  }
  std::vector<Registration> registered;
};

template <class Router>
void ExpectCommonMessagesRegistered(Router& router) {
  ASSERT_EQ(router.registered.size(), 4u);
  const struct {
    unsigned short id;
    const char* name;
  } expected[] = {{65286, "ServerVersionRequest"},
                  {65344, "ServerVersionResponse"},
                  {65287, "ImpersonateUserRequest"},
                  {65345, "ImpersonateUserResponse"}};
  for (std::size_t i = 0; i < 4; ++i) {
    SCOPED_TRACE(expected[i].name);
    const Registration& r = router.registered[i];
    EXPECT_EQ(r.id, expected[i].id);
    EXPECT_EQ(r.name, expected[i].name);
    ASSERT_NE(r.factory, nullptr);
    // A default instance of the registered class, its name left empty.
    Streamable* made = r.factory->Create();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->Id(), (dv_stream_ns::VerClsId{expected[i].id, ""}));
    r.factory->Destroy(made);
  }
}

TEST(CommonMessages, InitRegistersTheFourClassesInOrderOnBothRouters) {
  RecordingRouter<MessageRouterClient> client;
  CommonMessages::Init(&client);
  ExpectCommonMessagesRegistered(client);
  RecordingRouter<MessageRouterServer> server;
  CommonMessages::Init(&server);
  ExpectCommonMessagesRegistered(server);
  CommonMessages::Init(static_cast<MessageRouterClient*>(nullptr));
}

}  // namespace
}  // namespace nv_ns
