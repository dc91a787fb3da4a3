#include "nvshared/platform/stream/stream.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>

#include "nvshared/platform/stream/stream_exceptions.h"
#include "nvshared/platform/stream/streamable.h"
#include "nvshared/platform/stream/var_int.h"

namespace dv_stream_ns {
namespace {

std::string Bytes(std::initializer_list<int> bytes) {
  std::string out;
  for (int b : bytes) out.push_back(static_cast<char>(b));
  return out;
}

std::string Written(const FastStreamBuffer& buffer) {
  return std::string(buffer.data(), buffer.write_position());
}

// The text of the E that `f` throws, or a note that it threw nothing.
template <class E, class F>
std::string ThrownText(F&& f) {
  try {
    f();
  } catch (const E& e) {
    return e.what();
  }
  return "<nothing thrown>";
}

TEST(Stream, ScalarsAreLittleEndianWithNoTagsAndReadBack) {
  FastStreamBuffer buffer;
  Stream out(&buffer);
  bool yes = true;
  std::int16_t s = -2;
  int i = 0x01020304;
  std::int64_t big = 0x1122334455667788;
  double one = 1.0;
  out.Transfer("b", yes, 1).Transfer("s", s, 1).Transfer("i", i, 1);
  out.Transfer("big", big, 7).Transfer("d", one, 1);  // any non-zero writes
  EXPECT_EQ(Written(buffer),
            Bytes({0x01,                                               // bool
                   0xFE, 0xFF,                                         // -2
                   0x04, 0x03, 0x02, 0x01,                             // int
                   0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11,     // int64
                   0,    0,    0,    0,    0,    0,    0xF0, 0x3F}));  // 1.0

  Stream in(&buffer);
  bool b2 = false;
  std::int16_t s2 = 0;
  int i2 = 0;
  std::int64_t big2 = 0;
  double d2 = 0;
  in.Transfer("b", b2, 0).Transfer("s", s2, 0).Transfer("i", i2, 0);
  in.Transfer("big", big2, 0).Transfer("d", d2, 0);
  EXPECT_EQ(b2, true);
  EXPECT_EQ(s2, -2);
  EXPECT_EQ(i2, i);
  EXPECT_EQ(big2, big);
  EXPECT_EQ(d2, 1.0);
}

TEST(Stream, AnyNonZeroByteReadsAsTrue) {
  const std::string bytes = Bytes({0x02});
  FastStreamBuffer view(bytes.data(), bytes.size());
  Stream in(&view);
  bool b = false;
  in.Read("b", b);
  EXPECT_TRUE(b);
}

TEST(Stream, VarIntsTakeOneToFiveBigEndianBytes) {
  struct Case {
    std::uint32_t value;
    std::string bytes;
  } cases[] = {
      {0, Bytes({0x00})},
      {0x7F, Bytes({0x7F})},
      {0x80, Bytes({0x81, 0x00})},  // 1 | 0000000
      {300, Bytes({0x82, 0x2C})},   // 300 = 2 * 128 + 44
      {0x3FFF, Bytes({0xFF, 0x7F})},
      {0x4000, Bytes({0x81, 0x80, 0x00})},  // 1 << 14
      {0x1FFFFF, Bytes({0xFF, 0xFF, 0x7F})},
      {0x200000, Bytes({0x81, 0x80, 0x80, 0x00})},  // 1 << 21
      {0xFFFFFFF, Bytes({0xFF, 0xFF, 0xFF, 0x7F})},
      {0x10000000, Bytes({0x81, 0x80, 0x80, 0x80, 0x00})},  // 1 << 28
      {0xFFFFFFFF, Bytes({0x8F, 0xFF, 0xFF, 0xFF, 0x7F})},  // 4 bits first
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    FastStreamBuffer buffer;
    Stream stream(&buffer);
    stream.WriteVarInt("n", c.value);
    EXPECT_EQ(Written(buffer), c.bytes);
    EXPECT_EQ(stream.ReadVarInt("n"), c.value);
    EXPECT_EQ(buffer.readable(), 0u);
  }
}

TEST(Stream, FifthVarIntByteEndsItWhateverItsTopBit) {
  const std::string bytes = Bytes({0x81, 0x80, 0x80, 0x80, 0x80, 0x2A});
  FastStreamBuffer view(bytes.data(), bytes.size());
  Stream in(&view);
  EXPECT_EQ(in.ReadVarInt("n"), 0x10000000u);
  EXPECT_EQ(in.ReadVarInt("n"), 0x2Au);
}

TEST(Stream, StringsAreVarIntLengthThenBytes) {
  FastStreamBuffer buffer;
  Stream out(&buffer);
  std::string empty, abc = "abc", long300(300, 'x');
  out.Transfer("e", empty, 1).Transfer("a", abc, 1).Transfer("l", long300, 1);
  EXPECT_EQ(Written(buffer),
            Bytes({0x00, 0x03, 'a', 'b', 'c', 0x82, 0x2C}) + long300);

  Stream in(&buffer);
  std::string e2 = "stale", a2, l2;
  in.Transfer("e", e2, 0).Transfer("a", a2, 0).Transfer("l", l2, 0);
  EXPECT_EQ(e2, "");
  EXPECT_EQ(a2, "abc");
  EXPECT_EQ(l2, long300);
}

TEST(Stream, ReadsPastTheEndFailWithTheirTextsAndConsumeNothing) {
  struct Case {
    const char* what;
    std::string bytes;
    const char* text;
  } cases[] = {
      {"int from 3 bytes", Bytes({1, 2, 3}), kScalarUnderflowText},
      {"string of 5 with 2", Bytes({0x05, 'a', 'b'}), kBytesUnderflowText},
      {"huge length", Bytes({0x8F, 0xFF, 0xFF, 0xFF, 0x7F}),
       kBytesUnderflowText},
      {"length cut short", Bytes({0x81, 0x80}), kFlatVarIntUnderflowText},
      {"nothing at all", "", kFlatVarIntUnderflowText},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    FastStreamBuffer view(c.bytes.data(), c.bytes.size());
    Stream in(&view);
    int i = 7;
    std::string s = "kept";
    const std::string text = ThrownText<StreamUnderflow>([&] {
      if (c.text == kScalarUnderflowText) {
        in.Read("i", i);
      } else {
        in.Read("s", s);
      }
    });
    EXPECT_EQ(text, c.text);
    EXPECT_EQ(view.read_position(), 0u);
    EXPECT_EQ(i, 7);
    EXPECT_EQ(s, "kept");
  }
  EXPECT_EQ(std::string(kFlatVarIntUnderflowText),
            "StreamBufferReader<FastStreamBuffer>::ReadNext - unable to "
            "retrieve data");
  EXPECT_EQ(std::string(kPagedVarIntUnderflowText),
            "StreamBufferReader<cDVMDataStreamingReader>::ReadNext - unable "
            "to retrieve data");
  EXPECT_EQ(PagedOverflowText(12),
            "Attempt to write 12 bytes to DVMDataStreamingWriter failed");
}

TEST(Stream, PendingStartTagsAreWrittenAndCheckedOnce) {
  FastStreamBuffer buffer;
  Stream out(&buffer);
  out.PendWriteStartTag(0x07);
  int one = 1, two = 2;
  out.Write("one", one);
  out.Write("two", two);
  EXPECT_FALSE(out.write_start_tag_pending());
  EXPECT_FALSE(out.read_start_tag_pending());  // the marks are apart
  EXPECT_EQ(Written(buffer), Bytes({'V', 'I', 'A', 0x07, 1, 0, 0, 0,  //
                                    2, 0, 0, 0}));

  Stream in(&buffer);
  in.PendReadStartTag();
  int a = 0, b = 0;
  in.Read("one", a);
  in.Read("two", b);
  EXPECT_EQ(a + b * 10, 21);
  EXPECT_EQ(in.read_start_tag_flags(), 0x07);
}

TEST(Stream, BadOrUnwritableStartTagsFailWithTheirTexts) {
  const std::string vib = Bytes({'V', 'I', 'B', 0, 1, 0, 0, 0});
  FastStreamBuffer view(vib.data(), vib.size());
  Stream in(&view);
  in.PendReadStartTag();
  int i = 0;
  EXPECT_EQ(ThrownText<StreamUnderflow>([&] { in.Read("i", i); }),
            "VIA TAG is missing");
  EXPECT_EQ(view.read_position(), 0u);

  const std::string shortTag = Bytes({'V', 'I', 'A'});
  FastStreamBuffer shortView(shortTag.data(), shortTag.size());
  Stream shortIn(&shortView);
  shortIn.PendReadStartTag();
  EXPECT_EQ(ThrownText<StreamUnderflow>([&] { shortIn.Read("i", i); }),
            kBytesUnderflowText);

  char store[3];
  FastStreamBuffer full(store, sizeof store, 0, false);
  Stream out(&full);
  out.PendWriteStartTag();
  EXPECT_EQ(ThrownText<StreamOverflow>([&] { out.Write("i", i); }),
            "FastStreamBuffer::Write failed while writing flags");
}

// Records what a Protocol hears, and answers reads from fixed values.
class RecordingProtocol : public Protocol {
 public:
  void WriteScalar(const char* name, const char* typeName, bool isSigned,
                   std::size_t size, const void*) override {
    heard.push_back(std::string("W ") + name + " " + typeName + " " +
                    (isSigned ? "s" : "u") + std::to_string(size));
  }
  void ReadScalar(const char* name, const char*, bool, std::size_t size,
                  void* address) override {
    heard.push_back(std::string("R ") + name);
    if (size == sizeof(int)) *static_cast<int*>(address) = 42;
  }
  void WriteString(const char* name, const std::string& value) override {
    heard.push_back(std::string("WS ") + name + "=" + value);
  }
  void ReadString(const char* name, std::string& value,
                  std::size_t& length) override {
    heard.push_back(std::string("RS ") + name);
    value = "read";
    length = value.size();
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
  EXPECT_EQ(i, 42);
  EXPECT_EQ(s, "read");
  EXPECT_FALSE(stream.write_start_tag_pending());
}

TEST(Stream, WithNoBackEndFailsClearly) {
  Stream stream;
  int i = 0;
  EXPECT_EQ(ThrownText<StreamExceptionBase>([&] { stream.Write("i", i); }),
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
  EXPECT_EQ(state, nullptr);
  EXPECT_EQ(base.Id(), VerClsId{});
  // The base never touches the wire stream, which has no type of its own.
  alignas(8) char storage[8];
  auto& wire = *reinterpret_cast<FasterWireStreamBase*>(storage);
  EXPECT_EQ(ThrownText<StreamExceptionBase>([&] { base.Extract(wire); }),
            "Streamable has no faster wire form");
}

}  // namespace
}  // namespace dv_stream_ns
