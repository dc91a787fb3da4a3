// The property emitters of the diagnostics channel: what reaches the host's
// sink, and that a failing sink costs one property only.
#include "nvshared/platform/utils/dm_utils.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace nv_ns {
namespace {

TEST(DMUtilsPropertiesTest, ValuesFlagsAndWindowsReachTheSink) {
  std::vector<DMProperty> seen;
  int calls = 0;
  const DMUtils::PropertySink previous =
      DMUtils::SetPropertySink([&](const DMProperty& p) {
        if (++calls == 1) throw std::runtime_error("sink down");
        seen.push_back(p);
      });
  const DMWindowInfo window{3, "Ladder"};
  DMUtils::GenDMDefaultProps("G", "lost", "x");  // the sink throws
  DMUtils::GenDMGlobalPropsBool(true, "G", "b", true);
  DMUtils::GenDMLocalPropsInt(false, window, "G", "i", -7);
  DMUtils::GenDMDefaultPropsDouble("G", "d", 0.1);
  DMUtils::GenDMLocalProps(true, window, "G", "s", "text");
  const DMUtils::PropertySink ours = DMUtils::SetPropertySink(previous);
  EXPECT_TRUE(static_cast<bool>(ours));
  DMUtils::GenDMGlobalPropsInt(false, "G", "after", 1);  // no sink of ours

  struct Expected {
    DMProperty::Scope scope;
    bool flag;
    const char* window;
    const char* key;
    DMProperty::Kind kind;
    const char* value;
    double number;
  };
  using S = DMProperty::Scope;
  using K = DMProperty::Kind;
  const Expected expected[] = {
      {S::kGlobal, true, "", "b", K::kBool, "1", 1.0},
      {S::kLocal, false, "Ladder", "i", K::kInt, "-7", -7.0},
      {S::kDefault, false, "", "d", K::kDouble, "0.1", 0.1},
      {S::kLocal, true, "Ladder", "s", K::kString, "text", 0.0},
  };
  ASSERT_EQ(seen.size(), std::size(expected));
  for (std::size_t i = 0; i < seen.size(); ++i) {
    SCOPED_TRACE(expected[i].key);
    EXPECT_EQ(seen[i].scope, expected[i].scope);
    EXPECT_EQ(seen[i].flag, expected[i].flag);
    EXPECT_EQ(seen[i].window.m_sWindowName, expected[i].window);
    EXPECT_EQ(seen[i].group, "G");
    EXPECT_EQ(seen[i].key, expected[i].key);
    EXPECT_EQ(seen[i].kind, expected[i].kind);
    EXPECT_EQ(seen[i].value, expected[i].value);
    EXPECT_EQ(seen[i].number, expected[i].number);
  }
}

}  // namespace
}  // namespace nv_ns
