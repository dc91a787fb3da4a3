#include "nvshared/messaging/xstreamable.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/testing/hex_bytes.h"
#include "nvshared/testing/message_of.h"
#include "nvshared/testing/test_data.h"
#include "nvshared/testing/wire_bytes.h"

namespace nv_ns {
namespace {

using nvshared::testing::HexBytes;
using nvshared::testing::MessageOf;
using nvshared::testing::ToHex;
using nvshared::testing::XStreamBytes;

// A nested record: one 4-byte scalar.
struct Inner final : XStreamable {
  static constexpr char kName[kNameLength] = {'I', 'N', 0, 0, 0};
  int m_v = 0;
  Inner() : XStreamable(kName, 1) {}
  explicit Inner(int v) : Inner() { m_v = v; }
  void Transfer() override { TransferScalar("m_v", m_v); }
  std::uint64_t Measure() const override { return 6; }
  using XStreamable::TransferScalar;
};

// One item of every kind, under a five-letter name.
struct Kinds final : XStreamable {
  static constexpr char kName[kNameLength] = {'K', 'I', 'N', 'D', 'S'};
  bool m_flag = false;
  short m_short = 0;
  double m_double = 0;
  std::string m_text;
  char m_code[4] = {};
  std::vector<int> m_ints;
  std::vector<std::string> m_words;
  Inner m_inner;
  std::vector<Inner> m_list;
  std::uint16_t m_itemsDone = 0;

  Kinds() : XStreamable(kName, 1) {}
  void Transfer() override {
    TransferScalar("m_flag", m_flag);
    TransferScalar("m_short", m_short);
    TransferScalar("m_double", m_double);
    TransferString("m_text", m_text);
    TransferCharArray("m_code", m_code, sizeof m_code);
    CountItem();
    TransferIntVector("m_ints", m_ints);
    TransferStringVector("m_words", m_words);
    TransferObject("m_inner", m_inner);
    TransferObjectVector("m_list", m_list);
    m_itemsDone = GetItemNumber();
  }
  std::uint64_t Measure() const override { return 0; }
};

// A record at version 3 (int, string, short) and the same record as version
// 2 and 4 wrote it: without the short, and with one more int.
struct Gate final : XStreamable {
  static constexpr char kName[kNameLength] = {'G', 'A', 'T', 'E', 0};
  std::uint32_t m_version;
  int m_a = -1;
  std::string m_b = "default";
  short m_c = 99;
  int m_d = 0;
  std::uint16_t m_itemsDone = 0;

  explicit Gate(std::uint32_t version = 3)
      : XStreamable(kName, version), m_version(version) {}
  void Transfer() override {
    TransferScalar("m_a", m_a);
    TransferString("m_b", m_b);
    if (m_version >= 3) TransferScalar("m_c", m_c);
    if (m_version >= 4) TransferScalar("m_d", m_d);
    m_itemsDone = GetItemNumber();
  }
  std::uint64_t Measure() const override { return 0; }
};

Kinds SampleKinds() {
  Kinds k;
  k.m_flag = true;
  k.m_short = -2;
  k.m_double = 1.5;
  k.m_text = "hi";
  std::memcpy(k.m_code, "abcd", 4);  // fills the field: no terminator
  k.m_ints = {1, -1};
  k.m_words = {"x", ""};
  k.m_inner = Inner(7);
  k.m_list = {Inner(1), Inner(2)};
  return k;
}

// Built by hand from the item grammar; 129 bytes.
const std::string kKindsBytes = HexBytes(
    "01 81 00 | 01 00 00 00 | 'K' 'I' 'N' 'D' 'S'"  // header, total 129
    "| 54 01 01"                                    // #0 bool true
    "| 54 02 fe ff"                                 // #1 short -2
    "| 54 08 00 00 00 00 00 00 f8 3f"               // #2 double 1.5
    "| 53 03 00 01 'h' 'i'"                         // #3 "hi": count 2+1
    "| 43 05 00 01 'a' 'b' 'c' 'd'"                 // #4 char[4], full
    "| 56 09 00 04 01 00 00 00 ff ff ff ff"         // #5 {1,-1}: 4*2+1
    "| 56 02 00 | 53 02 00 01 'x' | 53 01 00 01"    // #6 "x", #7 "", #8 V
    "| 49 12 00 | 01 12 00 01 00 00 00 'I' 'N' 00 00 00 54 04 07 00 00 00"
    // #9 nested Inner(7), 18 bytes
    "| 45 28 00 02 00"  // #10 two objects; span = 4 + 18 + 18 = 40
    "| 01 12 00 01 00 00 00 'I' 'N' 00 00 00 54 04 01 00 00 00"
    "| 01 12 00 01 00 00 00 'I' 'N' 00 00 00 54 04 02 00 00 00");

// Writing the object read gives the golden bytes again (every value differs
// from its default), so every item was read.
TEST(XStreamableTest, EveryItemKindBothWays) {
  Kinds k = SampleKinds();
  EXPECT_EQ(ToHex(XStreamBytes(k)), ToHex(kKindsBytes));
  EXPECT_EQ(k.m_itemsDone, 11);
  EXPECT_EQ(k.GetDirection(), XStreamable::kIdle);

  Kinds read;
  std::memcpy(read.m_code, "zzzz", 4);
  // A longer buffer is fine: the header bounds the read.
  const std::string buffer = kKindsBytes + "trailing";
  EXPECT_EQ(read.ReadFrom(buffer.data(), buffer.size()), 129u);
  EXPECT_EQ(read.m_itemsDone, 11);
  EXPECT_EQ(read.GetStreamVersion(), 1u);
  EXPECT_FALSE(read.m_list[1].HasFailed());
  EXPECT_EQ(ToHex(XStreamBytes(read)), ToHex(kKindsBytes));
}

TEST(XStreamableTest, VersionGate) {
  Gate v2(2);
  v2.m_a = 5;
  v2.m_b = "ab";
  const std::string old_bytes = XStreamBytes(v2);
  // 12 + 6 + 6: the v2 object ends on an item boundary.
  ASSERT_EQ(old_bytes.size(), 24u);
  std::string cut = old_bytes.substr(0, 22);  // cut inside its string
  cut[1] = 22;
  std::string same = old_bytes;  // claims the reader's own version
  same[3] = 3;
  Gate v4(4);
  v4.m_c = 1;
  v4.m_d = 77;
  const std::string empty = HexBytes("01 0c 00 03 00 00 00 'G' 'A' 'T' 'E' 00");
  std::string empty_v1 = empty;
  empty_v1[3] = 1;
  struct Case {
    const char* what;
    std::string bytes;
    std::string message;  // "" for a read that succeeds, and then:
    int a = 0;
    short c = 0;
    int itemsDone = 0;
  };
  const Case cases[] = {
      // The item an older writer lacks keeps its value, uncounted.
      {"older writer", old_bytes, "", 5, 99, 2},
      {"cut", cut,
       "Buffer Underflow when processing item #1 (m_b) in object 'GATE'. "
       "Item needs 2 bytes. Current offset 22. Buffer length 22 bytes"},
      {"own version, last item missing", same,
       "Buffer Underflow when processing item #2 (m_c) in object 'GATE'. "
       "Item needs 4 bytes. Current offset 24. Buffer length 24 bytes"},
      // A newer writer's extra item is left unread; the total skips it.
      {"newer writer", XStreamBytes(v4), "", -1, 1, 3},
      // No items at all: an error at the reader's version, nothing but
      // defaults at an older one.
      {"no items", empty,
       "Buffer Underflow when processing item #0 (m_a) in object 'GATE'. "
       "Item needs 6 bytes. Current offset 12. Buffer length 12 bytes"},
      {"no items, older", empty_v1, "", -1, 99, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Gate g;
    std::size_t read = 0;
    EXPECT_EQ(
        MessageOf([&] { read = g.ReadFrom(c.bytes.data(), c.bytes.size()); }),
        c.message);
    EXPECT_EQ(g.HasFailed(), !c.message.empty());
    if (!c.message.empty()) continue;
    EXPECT_EQ(read, c.bytes.size());
    EXPECT_EQ(g.m_a, c.a);
    EXPECT_EQ(g.m_b, c.a == 5 ? "ab" : "default");
    EXPECT_EQ(g.m_c, c.c);
    EXPECT_EQ(g.m_itemsDone, c.itemsDone);
    // The writer's version, whatever the reader's own.
    EXPECT_EQ(g.GetStreamVersion(), std::uint32_t(c.bytes[3]));
  }
}

TEST(XStreamableTest, HeaderFailures) {
  const std::string good = kKindsBytes;
  struct Case {
    const char* what;
    std::string bytes;
    std::string message;
  };
  std::string protocol = good;
  protocol[0] = 2;
  std::string name = good;
  name[7] = 'k';
  std::string four_letter = good;
  four_letter.replace(7, 5, std::string("ASAP\0", 5));
  const Case cases[] = {
      {"11 bytes, looked at before the protocol", std::string(11, '\x02'),
       "The Buffer length (11 bytes) is less than the header length (12 "
       "bytes). The object name is 'KINDS'"},
      {"protocol 2", protocol,
       "Protocol version mismatch. Expected protocol version: '1'. Protocol "
       "version found: '2'"},
      // A five-letter name is printed from the buffer up to the first NUL,
      // which here is in the first item's value.
      {"five-letter name", name,
       "Object name mismatch. Serialized name is 'kINDST\x01\x01T\x02\xfe\xff"
       "T\x08'; the object name is 'KINDS'"},
      {"four-letter name", four_letter,
       "Object name mismatch. Serialized name is 'ASAP'; the object name is "
       "'KINDS'"},
      {"shorter than the header says", good.substr(0, 128),
       "The buffer length (128 bytes) is shorter than the length specified "
       "in the Object 'KINDS' header (129 bytes)."},
  };
  for (const Case& c : cases) {
    Kinds k;
    EXPECT_EQ(MessageOf([&] { k.ReadFrom(c.bytes.data(), c.bytes.size()); }),
              c.message)
        << c.what;
    EXPECT_TRUE(k.HasFailed()) << c.what;
  }
}

TEST(XStreamableTest, ItemAndWriteFailures) {
  const Kinds sample = SampleKinds();
  for (const auto& row : nvshared::testing::ReadTestTable(
           "nvshared/messaging/testdata/xstream_failures.txt", 5)) {
    SCOPED_TRACE(row.where);
    const std::size_t at = std::stoul(row[1]);
    Kinds k = sample;
    if (row[0] == "write") {
      char buffer[200];
      EXPECT_EQ(MessageOf([&] { k.WriteTo(buffer, at); }), row[4]);
      continue;
    }
    std::string bytes = kKindsBytes;
    bytes.replace(at, 1, HexBytes(row[2]));
    Kinds fresh;
    EXPECT_EQ(MessageOf([&] { fresh.ReadFrom(bytes.data(), bytes.size()); }),
              row[4]);
    EXPECT_EQ(fresh.HasFailed(), row[3] == "yes");
  }
}

struct Outer final : XStreamable {
  static constexpr char kName[kNameLength] = {'O', 'U', 'T', 0, 0};
  Inner m_inner{7};
  Outer() : XStreamable(kName, 1) {}
  void Transfer() override { TransferObject("m_inner", m_inner); }
  std::uint64_t Measure() const override { return 0; }
};

// A nested object with little room: below a header's room counted from the
// tag, the nested header's own message with that count; above it, the room
// after the tag and length, so that nothing is written past the buffer.
TEST(XStreamableTest, NestedObjectWriteFailures) {
  const auto shortBuffer = [](int bytes) {
    return "The Buffer length (" + std::to_string(bytes) +
           " bytes) is less than the header length (12 bytes). The object "
           "name is 'IN'";
  };
  char buffer[40];
  for (const auto& [length, message] :
       std::vector<std::pair<std::size_t, std::string>>{
           {12, shortBuffer(0)},
           {14, shortBuffer(2)},
           {23, shortBuffer(11)},
           {26, shortBuffer(11)},  // room 14: bound to the 11 after the tag
           {33, ""}}) {
    Outer outer;
    EXPECT_EQ(MessageOf([&] { outer.WriteTo(buffer, length); }), message)
        << length;
  }
}

TEST(XStreamableTest, WriteToStringStopsAt32768Bytes) {
  Kinds k;
  k.m_text.assign(40000, 'x');
  std::string out = "untouched";
  EXPECT_EQ(MessageOf([&] { k.WriteToString(out); }),
            "Buffer Overflow when processing item #3 (m_text) in object "
            "'KINDS'. Item needs 40004 bytes. Current offset 29. Buffer "
            "length 32768 bytes");
  EXPECT_EQ(out, "untouched");
}

TEST(XStreamableTest, AFailedObjectSkipsEverythingAndItsCopyIsFresh) {
  Kinds k;
  std::string bytes = kKindsBytes;
  bytes[12] = 'S';
  EXPECT_NE(MessageOf([&] { k.ReadFrom(bytes.data(), bytes.size()); }), "");
  ASSERT_TRUE(k.HasFailed());
  EXPECT_EQ(k.GetDirection(), XStreamable::kIdle);

  // Failed for good: a new read changes nothing and raises nothing.
  EXPECT_EQ(k.ReadFrom(kKindsBytes.data(), kKindsBytes.size()), 129u);
  EXPECT_EQ(k.m_text, "");
  EXPECT_EQ(k.GetItemName(), nullptr);

  // A copy or an assignment takes the members, never the failure.
  Kinds copy = k;
  Kinds assigned = SampleKinds();
  assigned = k;
  assigned = assigned;  // nothing happens
  for (Kinds* fresh : {&copy, &assigned}) {
    EXPECT_FALSE(fresh->HasFailed());
    EXPECT_EQ(fresh->m_short, k.m_short);
    EXPECT_EQ(fresh->ReadFrom(kKindsBytes.data(), kKindsBytes.size()), 129u);
    EXPECT_EQ(fresh->m_text, "hi");
  }
}

TEST(XStreamableTest, AttachWithAnUnknownDirectionBindsNothing) {
  Kinds k = SampleKinds();
  char buffer[200];
  EXPECT_EQ(k.Attach(buffer, sizeof buffer, 3), 0u);
  EXPECT_EQ(k.GetDirection(), 3);
  k.Transfer();  // reads nothing, writes nothing
  EXPECT_EQ(k.m_text, "hi");
  // Only the char array counts: its caller counts it whatever happened.
  EXPECT_EQ(k.m_itemsDone, 1);
  k.Detach();
}

}  // namespace
}  // namespace nv_ns
