#include "nvshared/platform/stream/stream.h"

#include <cstdint>
#include <string>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/platform/stream/stream_exceptions.h"
#include "nvshared/platform/stream/streamable.h"
#include "nvshared/testing/hex_bytes.h"
#include "nvshared/testing/message_of.h"

namespace dv_stream_ns {
namespace {

using nvshared::testing::HexBytes;
using nvshared::testing::MessageOf;

std::string Written(const FastStreamBuffer& buffer) {
  return std::string(buffer.data(), buffer.write_position());
}

TEST(Stream, ScalarsAndStringsInMemoryOrderWithNoTags) {
  FastStreamBuffer buffer;
  Stream out(&buffer);
  bool yes = true;
  std::int16_t s = -2;
  int i = 0x01020304;
  std::int64_t big = 0x1122334455667788;
  double one = 1.0;
  std::string empty, abc = "abc", long300(300, 'x');
  out.Transfer("b", yes, 1).Transfer("s", s, 1).Transfer("i", i, 1);
  out.Transfer("big", big, 7).Transfer("d", one, 1);  // any non-zero writes
  out.Transfer("e", empty, 1).Transfer("a", abc, 1).Transfer("l", long300, 1);
  EXPECT_EQ(Written(buffer),
            HexBytes("01 | fe ff | 04 03 02 01 | 88 77 66 55 44 33 22 11 |"
                     "00 00 00 00 00 00 f0 3f | 00 | 03 'a' 'b' 'c' | 82 2c") +
                long300);

  Stream in(&buffer);
  bool b2 = false;
  std::int16_t s2 = 0;
  int i2 = 0;
  std::int64_t big2 = 0;
  double d2 = 0;
  std::string e2 = "stale", a2, l2;
  in.Transfer("b", b2, 0).Transfer("s", s2, 0).Transfer("i", i2, 0);
  in.Transfer("big", big2, 0).Transfer("d", d2, 0);
  in.Transfer("e", e2, 0).Transfer("a", a2, 0).Transfer("l", l2, 0);
  EXPECT_TRUE(b2 && s2 == -2 && i2 == i && big2 == big && d2 == 1.0);
  EXPECT_EQ(e2 + a2 + l2, abc + long300);

  const std::string two = HexBytes("02");  // any non-zero byte is true
  FastStreamBuffer view(two.data(), two.size());
  Stream(&view).Read("b", b2 = false);
  EXPECT_TRUE(b2);
}

TEST(Stream, VarIntsTakeOneToFiveBigEndianBytes) {
  struct Case {
    std::uint32_t value;
    const char* hex;
  } cases[] = {
      {0, "00"},
      {0x7F, "7f"},
      {0x80, "81 00"},  // 1 | 0000000
      {300, "82 2c"},   // 300 = 2 * 128 + 44
      {0x3FFF, "ff 7f"},
      {0x4000, "81 80 00"},  // 1 << 14
      {0x1FFFFF, "ff ff 7f"},
      {0x200000, "81 80 80 00"},  // 1 << 21
      {0xFFFFFFF, "ff ff ff 7f"},
      {0x10000000, "81 80 80 80 00"},  // 1 << 28
      {0xFFFFFFFF, "8f ff ff ff 7f"},  // the first byte holds 4 bits
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    FastStreamBuffer buffer;
    Stream stream(&buffer);
    stream.WriteVarInt("n", c.value);
    EXPECT_EQ(Written(buffer), HexBytes(c.hex));
    EXPECT_EQ(stream.ReadVarInt("n"), c.value);
    EXPECT_EQ(buffer.readable(), 0u);
  }
  // The fifth byte ends a varint whatever its top bit.
  const std::string five = HexBytes("81 80 80 80 80 2a");
  FastStreamBuffer view(five.data(), five.size());
  Stream in(&view);
  EXPECT_EQ(in.ReadVarInt("n"), 0x10000000u);
  EXPECT_EQ(in.ReadVarInt("n"), 0x2Au);
}

TEST(Stream, ReadsPastTheEndFailWithTheirTextsAndConsumeNothing) {
  const char* scalar = "ReadFromStream - unable to retrieve data";
  const char* bytes = "ReadFromStream - unable to retrieve multiple data";
  const char* varint =
      "StreamBufferReader<FastStreamBuffer>::ReadNext - unable to retrieve "
      "data";
  struct Case {
    const char* hex;
    const char* text;
  } cases[] = {
      {"01 02 03", scalar},       // an int from 3 bytes
      {"05 'a' 'b'", bytes},      // 5 characters announced, 2 there
      {"8f ff ff ff 7f", bytes},  // a length never to be allocated
      {"81 80", varint},          // the length itself cut short
      {"", varint},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.hex);
    const std::string data = HexBytes(c.hex);
    FastStreamBuffer view(data.data(), data.size());
    Stream in(&view);
    int i = 7;
    std::string s = "kept";
    EXPECT_EQ(MessageOf<StreamUnderflow>([&] {
                if (c.text == scalar) {
                  in.Read("i", i);
                } else {
                  in.Read("s", s);
                }
              }),
              c.text);
    EXPECT_EQ(view.read_position(), 0u);
    EXPECT_EQ(std::to_string(i) + s, "7kept");
  }
  EXPECT_EQ(std::string(kPagedVarIntUnderflowText),
            "StreamBufferReader<cDVMDataStreamingReader>::ReadNext - unable "
            "to retrieve data");
  EXPECT_EQ(PagedOverflowText(12),
            "Attempt to write 12 bytes to DVMDataStreamingWriter failed");
}

TEST(Stream, PendingStartTagsAreWrittenAndCheckedOnceEachWay) {
  FastStreamBuffer buffer;
  Stream out(&buffer);
  out.PendWriteStartTag(0x07);
  int one = 1, two = 2;
  out.Write("one", one);
  out.Write("two", two);
  EXPECT_FALSE(out.read_start_tag_pending());  // the marks are apart
  EXPECT_EQ(Written(buffer),
            HexBytes("'V' 'I' 'A' 07 | 01 00 00 00 | 02 00 00 00"));

  Stream in(&buffer);
  in.PendReadStartTag();
  in.Read("one", one = 0);
  in.Read("two", two = 0);
  EXPECT_EQ(one + two * 10, 21);
  EXPECT_EQ(in.read_start_tag_flags(), 0x07);

  const std::string vib = HexBytes("'V' 'I' 'B' 00 01 00 00 00");
  FastStreamBuffer view(vib.data(), vib.size());
  Stream bad(&view);
  bad.PendReadStartTag();
  EXPECT_EQ(MessageOf<StreamUnderflow>([&] { bad.Read("i", one); }),
            "VIA TAG is missing");
  EXPECT_EQ(view.read_position(), 0u);

  char store[3];
  FastStreamBuffer full(store, sizeof store, 0, false);
  Stream tight(&full);
  tight.PendWriteStartTag();
  EXPECT_EQ(MessageOf<StreamOverflow>([&] { tight.Write("i", one); }),
            "FastStreamBuffer::Write failed while writing flags");
}

// Records what a Protocol hears, and answers reads with fixed values.
struct RecordingProtocol : Protocol {
  void WriteScalar(const char* name, const char* type, bool isSigned,
                   std::size_t size, const void*) override {
    heard.push_back(std::string("W ") + name + " " + type +
                    (isSigned ? " s" : " u") + std::to_string(size));
  }
  void ReadScalar(const char* name, const char*, bool, std::size_t,
                  void* address) override {
    heard.push_back(std::string("R ") + name);
    *static_cast<int*>(address) = 42;
  }
  void WriteString(const char* name, const std::string& value) override {
    heard.push_back(std::string("WS ") + name + "=" + value);
  }
  void ReadString(const char* name, std::string& value,
                  std::size_t& length) override {
    heard.push_back(std::string("RS ") + name);
    length = (value = "read").size();
  }
  std::vector<std::string> heard;
};

TEST(Stream, WithoutABufferEveryMemberGoesToTheProtocolByName) {
  RecordingProtocol proto;
  Stream stream(&proto);
  EXPECT_EQ(stream.GetProto(), &proto);
  stream.PendWriteStartTag();  // a Protocol frames its own messages
  int i = 5;
  unsigned short u = 1;
  std::string s = "abc";
  stream.Transfer("m_i", i, 1).Transfer("m_u", u, 1).Transfer("m_s", s, 1);
  stream.Transfer("m_i", i, 0).Transfer("m_s", s, 0);
  EXPECT_EQ(proto.heard,
            (std::vector<std::string>{
                std::string("W m_i ") + typeid(int).name() + " s4",
                std::string("W m_u ") + typeid(unsigned short).name() + " u2",
                "WS m_s=abc", "R m_i", "RS m_s"}));
  EXPECT_EQ(std::to_string(i) + s, "42read");

  Stream neither;
  EXPECT_EQ(MessageOf<StreamExceptionBase>([&] { neither.Write("i", i); }),
            "Stream has neither a FastStreamBuffer nor a Protocol");
}

TEST(Streamable, BaseTransfersNothingAndHasNoFasterWireForm) {
  Streamable base;
  FastStreamBuffer buffer;
  Stream stream(&buffer);
  EXPECT_EQ(&base.Transfer(stream, Streamable::eWrite), &stream);
  EXPECT_EQ(buffer.write_position(), 0u);
  MultiPartTransferState* state = nullptr;
  EXPECT_FALSE(base.MultiPartTransfer(stream, state));
  EXPECT_EQ(base.Id(), VerClsId{});
  // The base never touches the wire stream, which has no type of its own.
  alignas(8) char storage[8];
  auto& wire = *reinterpret_cast<FasterWireStreamBase*>(storage);
  EXPECT_EQ(MessageOf<StreamExceptionBase>([&] { base.Extract(wire); }),
            "Streamable has no faster wire form");
}

}  // namespace
}  // namespace dv_stream_ns
