// UDPKeyValue: the type table and the descriptor split, the date rule of its
// wire form, and equality. Its full wire form is pinned by the golden bytes
// of CUDPData, which carries two of them.
#include "nvshared/udp/udp_key_value.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/platform/utils/udp_date_time.h"
#include "nvshared/testing/hex_bytes.h"

namespace {

using nvshared::testing::HexBytes;
using nvshared::testing::ToHex;

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
      // Exact words only: case and prefixes do not count.
      {"Date", "", 0, {}},
      {"dat", "", 0, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.type) + " / " + c.constraints);
    const UDPKeyValue item(c.type, "k", "v", "d", "t", c.constraints);
    EXPECT_EQ(item.GetTypeEnum(), c.typeEnum);
    EXPECT_EQ(item.GetDescriptors(), c.descriptors);
  }
}

// An item of type word `type` whose wire value is `wire`, written by a
// writer of version 0x080000`version`.
std::string Item(const std::string& type, const char* version,
                 const std::string& wire) {
  auto text = [](const std::string& t) {
    std::string hex =
        "53 " + ToHex(std::string(1, char(t.size() + 1))) + " 00 01";
    for (char c : t) hex += std::string(" '") + c + "'";
    return hex;
  };
  const std::string items =
      HexBytes(text(type) + text("DD") + text(wire) +
               "| 53 01 00 01 | 53 01 00 01 | 53 01 00 01 | 53 01 00 01"
               "| 54 04 0" +
               (type == "date" ? "5" : "0") + " 00 00 00 | 56 00 00");
  return HexBytes("01 " + ToHex(std::string(1, char(12 + items.size()))) +
                  " 00 " + version + " 00 00 08 'U' 'D' 'P' 'K' 'e'") +
         items;
}

TEST(UDPKeyValueTest, DatesTravelAsIsoTextAndReturnToTheLocaleForm) {
  struct Case {
    const char* type;
    const char* pattern;
    const char* value;    // in memory before the write
    const char* version;  // of the writer that the reader meets
    const char* wire;
    const char* read;  // in memory after the read
  };
  const Case cases[] = {
      {"date", "%d.%m.%Y", "28.06.2024", "02", "2024-06-28", "28.06.2024"},
      {"date", "%m/%d/%Y", "06/28/2024", "02", "2024-06-28", "06/28/2024"},
      // Older writers sent the locale text, which stays as it came.
      {"date", "%m/%d/%Y", nullptr, "01", "28.06.2024", "28.06.2024"},
      // A word that is not exactly "date" is plain text both ways.
      {"Date", "%m/%d/%Y", "06/28/2024", "02", "06/28/2024", "06/28/2024"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.type) + " " + c.pattern + " v" + c.version);
    ASSERT_TRUE(nv_ns::UDPDateTime::SetLocalePatterns(c.pattern, ""));
    if (c.value != nullptr) {
      UDPKeyValue item(c.type, "DD", c.value, "", "", "");
      std::string bytes;
      item.WriteToString(bytes);
      EXPECT_EQ(ToHex(bytes), ToHex(Item(c.type, c.version, c.wire)));
      EXPECT_EQ(item.GetValue(), c.value);  // the locale text again
      EXPECT_EQ(item.Measure(), 64u + 4 + 2 + 10);
    }
    const std::string bytes = Item(c.type, c.version, c.wire);
    UDPKeyValue back;
    back.ReadFrom(bytes.data(), bytes.size());
    EXPECT_EQ(back.GetValue(), c.read);
  }
  nv_ns::UDPDateTime::SetLocalePatterns("", "");
}

TEST(UDPKeyValueTest, EqualityLooksAtEveryDescriptor) {
  const UDPKeyValue base("enum", "k", "a", "d", "t", "a;b");
  EXPECT_EQ(base, UDPKeyValue("enum", "k", "a", "d", "t", "a;b"));
  EXPECT_FALSE(base == UDPKeyValue("enum", "k", "a", "d", "t", "a;c"));
  EXPECT_FALSE(base == UDPKeyValue("enum", "k", "a", "d", "t", "a;b;"));
  UDPKeyValue changed = base;
  changed.SetValue("b");
  EXPECT_FALSE(base == changed);
}

}  // namespace
