#include "nvshared/platform/utils/opaque_capture.h"

#include <string>

#include <gtest/gtest.h>

#include "nvshared/testing/hex_bytes.h"

namespace nv_ns {
namespace {

using nvshared::testing::HexBytes;
using nvshared::testing::ToHex;

TEST(OpaqueCaptureTest, BothCarriersMatchHandBuiltBytes) {
  dv_core_ns::OpaqueDataMessage message;
  message.StoreAgileData<std::string>(5212, std::string("a\0b", 3));
  message.StoreAgileData<std::string>(-2, "");
  const std::string message_bytes = HexBytes(
      "'N' 'V' 'O' 'M' 02 00 | 5c 14 03 00 00 00 'a' 00 'b'"
      "| fe ff 00 00 00 00");
  auto saved = OpaqueCapture::Save(message);
  ASSERT_TRUE(saved.ok());
  EXPECT_EQ(ToHex(*saved), ToHex(message_bytes));

  auto read = OpaqueCapture::Read(message_bytes);
  ASSERT_TRUE(read.ok()) << read.status().message();
  EXPECT_EQ(read->carrier, OpaqueCapture::Carrier::kMessage);
  EXPECT_EQ(read->message.AgileData(), message.AgileData());
  EXPECT_TRUE(read->entries.empty());

  // By ascending id; a null entry is an empty one.
  dictionary entries;
  entries[5213] = boost::shared_ptr<const DataBuffer>(new DataBuffer("xy", 2));
  entries[7] = nullptr;
  const std::string dictionary_bytes = HexBytes(
      "'N' 'V' 'O' 'D' 02 00 | 07 00 00 00 00 00"
      "| 5d 14 02 00 00 00 'x' 'y'");
  saved = OpaqueCapture::Save(entries);
  ASSERT_TRUE(saved.ok());
  EXPECT_EQ(ToHex(*saved), ToHex(dictionary_bytes));
  read = OpaqueCapture::Read(dictionary_bytes);
  ASSERT_TRUE(read.ok()) << read.status().message();
  EXPECT_EQ(read->carrier, OpaqueCapture::Carrier::kDictionary);
  ASSERT_EQ(read->entries.size(), 2u);
  EXPECT_EQ(read->entries.at(7)->m_size, 0u);
  EXPECT_EQ(std::string(read->entries.at(5213)->m_pData, 2), "xy");
}

TEST(OpaqueCaptureTest, MalformedCapturesAreRefusedWithTheirReason) {
  struct Case {
    const char* hex;
    const char* message;
  };
  const Case cases[] = {
      {"'N' 'V' 'O'", "capture: 3 bytes; the header alone takes 6"},
      {"'N' 'V' 'O' 'X' 00 00",
       "capture: starts with neither \"NVOM\" nor \"NVOD\""},
      {"'N' 'V' 'O' 'M' 01 00 | 5c 14 03 00",
       "capture: entry 0 at offset 6: its id and length run past the end"},
      {"'N' 'V' 'O' 'M' 01 00 | 5c 14 ff ff ff ff 'a'",
       "capture: entry 0 (id 5212): length 4294967295 but 1 bytes remain"},
      {"'N' 'V' 'O' 'D' 02 00 | 01 00 00 00 00 00 | 01 00 00 00 00 00",
       "capture: entry 1 (id 1): the id comes twice"},
      {"'N' 'V' 'O' 'D' 00 00 | 00", "capture: 1 bytes follow the last entry"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.hex);
    auto read = OpaqueCapture::Read(HexBytes(c.hex));
    ASSERT_FALSE(read.ok());
    EXPECT_EQ(read.status().message(), c.message);
  }
  const std::string huge(OpaqueCapture::kMaxCaptureLength + 1, '\0');
  EXPECT_FALSE(OpaqueCapture::Read(huge).ok());
}

}  // namespace
}  // namespace nv_ns
