#include "nvshared/platform/stream/via_factory.h"

#include <memory>

#include <gtest/gtest.h>

namespace dv_stream_ns {
namespace {

struct Widget : Streamable {
  static inline int alive = 0;
  Widget() { ++alive; }
  ~Widget() override { --alive; }
  int value = 17;
};

// Counts its own destruction, to tell whether the registry freed it.
struct CountedFactory : VIAFactory<Widget> {
  explicit CountedFactory(int& deleted) : deleted_(deleted) {}
  ~CountedFactory() override { ++deleted_; }
  int& deleted_;
};

TEST(VIAFactory, CreatesDefaultInstancesAndDestroysThem) {
  VIAFactory<Widget> factory;
  Streamable* made = factory.Create();
  ASSERT_NE(dynamic_cast<Widget*>(made), nullptr);
  EXPECT_EQ(static_cast<Widget*>(made)->value, 17);
  factory.Destroy(made);
  EXPECT_EQ(Widget::alive, 0);
  factory.Destroy(nullptr);
}

TEST(VIAControl, StagesOnceCreatesByIdAndOwnsTheFactories) {
  constexpr unsigned short kId = 0x7001;
  int deleted = 0;
  EXPECT_TRUE(VIAControl::Stage(kId, "Widget", new CountedFactory(deleted)));
  EXPECT_FALSE(VIAControl::Stage(kId, "Other", new CountedFactory(deleted)));
  EXPECT_EQ(deleted, 1);  // the refused one, at once
  EXPECT_FALSE(VIAControl::Stage(0x7002, "Null", nullptr));
  EXPECT_FALSE(VIAControl::IsStaged(0x7002));

  EXPECT_EQ(VIAControl::ClassName(kId), "Widget");
  EXPECT_EQ(VIAControl::ClassName(0x7003), "");
  std::unique_ptr<Streamable> made(VIAControl::Create(kId));
  ASSERT_NE(dynamic_cast<Widget*>(made.get()), nullptr);
  EXPECT_EQ(VIAControl::Create(0x7003), nullptr);
}

// A factory may call back into the registry (to stage a class it needs, or
// build a nested one); the registry's lock is not held while it runs.
TEST(VIAControl, FactoryMayUseTheRegistry) {
  struct Nesting : VIAFactoryBase {
    Streamable* Create() override {
      VIAControl::Stage(0x7011, "Inner", new VIAFactory<Widget>);
      return VIAControl::Create(0x7011);
    }
  };
  ASSERT_TRUE(VIAControl::Stage(0x7010, "Outer", new Nesting));
  std::unique_ptr<Streamable> made(VIAControl::Create(0x7010));
  EXPECT_NE(dynamic_cast<Widget*>(made.get()), nullptr);
}

}  // namespace
}  // namespace dv_stream_ns
