// UDPKeyValue: the type table and the descriptor split, the wire form with
// its doubled tooltip and its date rule, Measure and equality.
#include "nvshared/udp/udp_key_value.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/platform/utils/udp_date_time.h"
#include "nvshared/testing/hex_bytes.h"

namespace {

using nvshared::testing::HexBytes;
using nvshared::testing::ToHex;

std::string Write(UDPKeyValue item) {
  std::string out;
  item.WriteToString(out);
  return out;
}

UDPKeyValue Read(const std::string& bytes) {
  UDPKeyValue item;
  item.ReadFrom(bytes.data(), bytes.size());
  return item;
}

// Restores the default locale patterns after a test that changes them.
class LocaleGuard {
 public:
  ~LocaleGuard() { nv_ns::UDPDateTime::SetLocalePatterns("", ""); }
};

TEST(UDPKeyValueTest, TypeWordsAndDescriptors) {
  struct Case {
    const char* type;
    const char* constraints;
    int typeEnum;
    std::vector<std::string> descriptors;
  };
  const Case cases[] = {
      {"bool", "", 1, {}},
      {"short", "", 2, {}},
      {"int", "", 3, {}},
      {"double", "", 4, {}},
      {"date", "", 5, {}},
      {"string", "", 6, {}},
      {"enum", "ZN;ZB", 7, {"ZN", "ZB"}},
      // A trailing ";" gives one more, empty, descriptor.
      {"enum", "ZN;ZB;", 7, {"ZN", "ZB", ""}},
      {"enum", ";", 7, {"", ""}},
      {"enum", "one", 7, {"one"}},
      // Exact words only: case and prefixes do not count.
      {"Date", "", 0, {}},
      {"dat", "", 0, {}},
      {"", "", 0, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.type) + " / " + c.constraints);
    const UDPKeyValue item(c.type, "k", "v", "d", "t", c.constraints);
    EXPECT_EQ(item.GetTypeEnum(), c.typeEnum);
    EXPECT_EQ(item.GetDescriptors(), c.descriptors);
    EXPECT_EQ(item.GetConstraints(), c.constraints);
  }
  const UDPKeyValue none;
  EXPECT_EQ(none.GetTypeEnum(), 0);
  EXPECT_TRUE(none.GetDescriptors().empty());
}

// "int" item, key "Days", value "5", tooltip "t" written twice.
const std::string kIntItem = HexBytes(
    "01 3c 00 | 02 00 00 08 | 'U' 'D' 'P' 'K' 'e'"
    "| 53 04 00 01 'i' 'n' 't'"      // m_sType
    "| 53 05 00 01 'D' 'a' 'y' 's'"  // m_sKey
    "| 53 02 00 01 '5'"              // m_sValue
    "| 53 02 00 01 'D'"              // m_sDispName
    "| 53 02 00 01 't'"              // m_sTooltip
    "| 53 01 00 01"                  // m_sConstraints
    "| 53 02 00 01 't'"              // m_sTooltip again
    "| 54 04 03 00 00 00"            // m_eType 3
    "| 56 00 00");                   // m_vDescriptors: none

TEST(UDPKeyValueTest, GoldenBytesWithTheTooltipTwice) {
  const UDPKeyValue item("int", "Days", "5", "D", "t", "");
  EXPECT_EQ(ToHex(Write(item)), ToHex(kIntItem));
  EXPECT_EQ(Read(kIntItem), item);
  // The second tooltip is the one that counts on reading.
  std::string bytes = kIntItem;
  bytes[12 + 7 + 8 + 5 + 5 + 5 + 4 + 4] = 'u';
  EXPECT_EQ(Read(bytes).GetTooltip(), "u");
}

// A date item whose wire value is `wire`, at `version` (the low byte).
std::string DateItem(const char* versionByte, const std::string& wire) {
  std::string hex;
  for (char c : wire) hex += std::string(" '") + c + "'";
  const std::string items = HexBytes(
      std::string("53 05 00 01 'd' 'a' 't' 'e' | 53 03 00 01 'D' 'D'") +
      "| 53 " + ToHex(std::string(1, static_cast<char>(wire.size() + 1))) +
      " 00 01" + hex +
      "| 53 01 00 01 | 53 01 00 01 | 53 01 00 01 | 53 01 00 01"
      "| 54 04 05 00 00 00 | 56 00 00");
  return HexBytes(std::string("01 ") +
                  ToHex(std::string(1, static_cast<char>(12 + items.size()))) +
                  " 00 " + versionByte + " 00 00 08 'U' 'D' 'P' 'K' 'e'") +
         items;
}

TEST(UDPKeyValueTest, DateTravelsAsIsoTextAndReturnsToTheLocaleForm) {
  LocaleGuard guard;
  ASSERT_TRUE(nv_ns::UDPDateTime::SetLocalePatterns("%d.%m.%Y", ""));
  UDPKeyValue item("date", "DD", "28.06.2024", "", "", "");
  std::string bytes;
  item.WriteToString(bytes);
  EXPECT_EQ(ToHex(bytes), ToHex(DateItem("02", "2024-06-28")));
  EXPECT_EQ(item.GetValue(), "28.06.2024");  // locale text again
  EXPECT_EQ(item.Measure(), 64u + 4 + 2 + 10);

  struct Case {
    const char* pattern;
    const char* version;
    const char* wire;
    const char* expected;
  };
  const Case cases[] = {
      {"%d.%m.%Y", "02", "2024-06-28", "28.06.2024"},
      {"%m/%d/%Y", "02", "2024-06-28", "06/28/2024"},
      // Older writers sent the locale text, which stays as it came.
      {"%m/%d/%Y", "01", "28.06.2024", "28.06.2024"},
      {"%m/%d/%Y", "00", "2024-06-28", "2024-06-28"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.pattern) + " v" + c.version);
    ASSERT_TRUE(nv_ns::UDPDateTime::SetLocalePatterns(c.pattern, ""));
    EXPECT_EQ(Read(DateItem(c.version, c.wire)).GetValue(), c.expected);
  }
}

TEST(UDPKeyValueTest, OnlyTheExactWordDateIsADate) {
  for (const char* type : {"Date", "dat", "string"}) {
    SCOPED_TRACE(type);
    UDPKeyValue item(type, "k", "06/28/2024", "", "", "");
    std::string bytes;
    item.WriteToString(bytes);
    EXPECT_NE(bytes.find("06/28/2024"), std::string::npos);
    EXPECT_EQ(Read(bytes).GetValue(), "06/28/2024");
    EXPECT_EQ(item.Measure(), 64u + std::string(type).size() + 1 + 10);
  }
}

TEST(UDPKeyValueTest, MeasureIgnoresTheSecondTooltipAndDescriptors) {
  const UDPKeyValue item("enum", "Key", "ZN", "Name", "Tip", "ZN;ZB");
  EXPECT_EQ(item.Measure(), 64u + 4 + 3 + 4 + 3 + 5 + 2);
}

TEST(UDPKeyValueTest, EqualityLooksAtEveryFieldAndDescriptor) {
  const UDPKeyValue base("enum", "k", "a", "d", "t", "a;b");
  struct Case {
    const char* what;
    UDPKeyValue other;
  };
  UDPKeyValue changedValue = base;
  changedValue.SetValue("b");
  const Case cases[] = {
      {"descriptor", UDPKeyValue("enum", "k", "a", "d", "t", "a;c")},
      {"trailing ;", UDPKeyValue("enum", "k", "a", "d", "t", "a;b;")},
      {"type", UDPKeyValue("string", "k", "a", "d", "t", "a;b")},
      {"key", UDPKeyValue("enum", "K", "a", "d", "t", "a;b")},
      {"value", changedValue},
      {"display name", UDPKeyValue("enum", "k", "a", "D", "t", "a;b")},
      {"tooltip", UDPKeyValue("enum", "k", "a", "d", "T", "a;b")},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_FALSE(base == c.other);
  }
  EXPECT_EQ(base, UDPKeyValue("enum", "k", "a", "d", "t", "a;b"));
  EXPECT_EQ(changedValue.GetDescriptors(), base.GetDescriptors());
}

}  // namespace
