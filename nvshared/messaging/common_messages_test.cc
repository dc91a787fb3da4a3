#include "nvshared/messaging/common_messages.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/messaging/impersonate_user_request.h"
#include "nvshared/messaging/impersonate_user_response.h"
#include "nvshared/messaging/server_version_request.h"
#include "nvshared/messaging/server_version_response.h"

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
    Streamable* made = r.factory->Create();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->Id().classId, expected[i].id);
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

TEST(CommonMessages, FactoriesMakeDefaultInstances) {
  RecordingRouter<MessageRouterClient> client;
  CommonMessages::Init(&client);
  std::unique_ptr<Streamable> made(client.registered[0].factory->Create());
  const auto* request = dynamic_cast<ServerVersionRequest*>(made.get());
  ASSERT_NE(request, nullptr);
  EXPECT_EQ(request->m_iRequestID, -1);
  EXPECT_EQ(request->m_iConnectionID, -1);
  EXPECT_EQ(request->m_szApplicationId, "");
  made.reset(client.registered[1].factory->Create());
  const auto* response = dynamic_cast<ServerVersionResponse*>(made.get());
  ASSERT_NE(response, nullptr);
  EXPECT_EQ(response->m_iExchangeID, -1);
  EXPECT_EQ(response->m_engineType, -1);
}

TEST(CommonMessages, BlockEnds) {
  EXPECT_EQ(CommonMessages::eCommonRequestBaseEnd_cc, 0xFF16);
  EXPECT_EQ(CommonMessages::eCommonResponseBaseEnd_cc, 0xFF50);
}

}  // namespace
}  // namespace nv_ns
