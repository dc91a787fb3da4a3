#include "nvshared/messaging/impersonation_data.h"

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "nvshared/testing/hex_bytes.h"

namespace nv_opaque_ns {
namespace {

using nvshared::testing::HexBytes;
using nvshared::testing::ToHex;

TEST(ImpersonationDataTest, CompareKeepsItsSigns) {
  struct Case {
    const char* name;
    std::function<void(ImpersonationData&)> a;
    std::function<void(ImpersonationData&)> b;
    int expected;  // the sign, or the exact value for 1/0/-1 steps
  };
  const Case cases[] = {
      {"equal", [](auto&) {}, [](auto&) {}, 0},
      {"broker first", [](auto& a) { a.m_iBrokerId = 2; },
       [](auto& b) { b.m_iExchangeId = 9; }, 1},
      {"broker less", [](auto& a) { a.m_iExchangeId = 9; },
       [](auto& b) { b.m_iBrokerId = 1; }, -1},
      {"exchange greater", [](auto& a) { a.m_iExchangeId = 3; },
       [](auto& b) { b.m_iExchangeId = 2; }, 1},
      {"member before all strings", [](auto& a) { a.m_szMember = "A"; },
       [](auto& b) { b.m_szMember = "B", b.m_szGroup = "0"; }, -1},
      {"trader", [](auto& a) { a.m_szTrader = "z"; },
       [](auto& b) { b.m_szTrader = "a"; }, 1},
      {"user name", [](auto& a) { a.m_szUserName = "a"; },
       [](auto& b) { b.m_szUserName = "b"; }, -1},
      {"password takes no part", [](auto& a) { a.m_szEncryptedPassword = "x"; },
       [](auto& b) { b.m_szEncryptedPassword = "y"; }, 0},
      // Company, MGT id and caretaker: 1 when a's is the less, else 0.
      {"company less", [](auto& a) { a.m_companyId = 1; },
       [](auto& b) { b.m_companyId = 2; }, 1},
      {"company greater reads equal", [](auto& a) { a.m_companyId = 2; },
       [](auto& b) { b.m_companyId = 1; }, 0},
      {"company before flags",
       [](auto& a) {
         a.m_companyId = 5;
         a.m_canViewSingleBrokerDataOnly = false;
       },
       [](auto&) {}, 0},
      {"broker flag true", [](auto&) {},
       [](auto& b) { b.m_canViewSingleBrokerDataOnly = false; }, 1},
      {"company flag false",
       [](auto& a) { a.m_canViewSingleCompanyDataOnly = false; }, [](auto&) {},
       -1},
      {"mgt less", [](auto& a) { a.m_mgtId = -2; }, [](auto&) {}, 1},
      {"mgt greater reads equal", [](auto& a) { a.m_mgtId = 4; },
       [](auto& b) { b.m_nCaretakerID = 1; }, 0},
      {"caretaker less", [](auto&) {},
       [](auto& b) { b.m_nCaretakerID = 0xFFFFFFFF; }, 1},
      {"caretaker greater reads equal",
       [](auto& a) { a.m_nCaretakerID = 0xFFFFFFFF; }, [](auto&) {}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ImpersonationData a, b;
    c.a(a);
    c.b(b);
    const int result = a.Compare(b);
    if (c.expected == 0) {
      EXPECT_EQ(result, 0);
    } else {
      EXPECT_EQ(result > 0 ? 1 : -1, c.expected);
    }
  }
  ImpersonationData self;
  self.m_companyId = 3;
  EXPECT_EQ(self.Compare(self), 0);
}

TEST(ImpersonationListTest, EmptyListIsCountAndUserName) {
  ImpersonationDataStreamableList list;
  list.m_userName = "ab";
  std::string bytes(64, '\0');
  bytes.resize(list.WriteTo(bytes.data(), bytes.size()));
  EXPECT_EQ(ToHex(bytes),
            ToHex(HexBytes("01 18 00 09 00 00 00 'I' 'M' 'L' 'T' 00"
                           "| 54 04 00 00 00 00 | 53 03 00 01 'a' 'b'")));
  EXPECT_EQ(list.Measure() + 12, bytes.size());
}

// A count of one, but the later layers hold three entries, as a writer
// whose list held two before the one it counted would leave them.
const char kOneOfThree[] =
    "01 9d 00 09 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 01 00 00 00"
    "| 54 04 07 00 00 00 | 53 02 00 01 'M' | 53 01 00 01 | 53 01 00 01"
    "| 53 02 00 01 'L'"
    "| 53 01 00 01 | 53 01 00 01 | 53 01 00 01"
    "| 53 01 00 01 | 53 02 00 01 'X' | 53 01 00 01"
    "| 54 04 03 00 00 00 | 54 04 00 00 00 00 | 54 01 01 | 54 01 01"
    "| 54 04 ff ff ff ff"
    "| 54 04 04 00 00 00 | 54 04 00 00 00 00 | 54 01 01 | 54 01 01"
    "| 54 04 ff ff ff ff"
    "| 54 04 05 00 00 00 | 54 04 00 00 00 00 | 54 01 01 | 54 01 01"
    "| 54 04 ff ff ff ff"
    "| 54 04 00 00 00 00 | 54 04 00 00 00 00 | 54 04 06 00 00 00";

TEST(ImpersonationListTest, ReadAppendsAndLaterLayersWalkTheWholeList) {
  const std::string bytes = HexBytes(kOneOfThree);
  ImpersonationDataStreamableList list;
  ImpersonationData existing;
  existing.m_szUserName = "mine";
  existing.m_iBrokerId = 8;
  list.push_back(existing);
  list.push_back(ImpersonationData());
  EXPECT_EQ(list.ReadFrom(bytes.data(), bytes.size()), bytes.size());
  // Appended after the two that were there; the later layers walked from
  // the list's start, so the first two took the buffer's values too.
  ASSERT_EQ(list.size(), 3u);
  auto it = list.begin();
  EXPECT_EQ(it->m_iBrokerId, 3);
  EXPECT_EQ(it->m_szUserName, "L");  // read empty, lent the list's
  ++it;
  EXPECT_EQ(it->m_iBrokerId, 4);
  EXPECT_EQ(it->m_szUserName, "X");
  ++it;
  EXPECT_EQ(it->m_iExchangeId, 7);
  EXPECT_EQ(it->m_szMember, "M");
  EXPECT_EQ(it->m_szUserName, "L");
  EXPECT_EQ(it->m_iBrokerId, 5);
  EXPECT_EQ(it->m_nCaretakerID, 6u);
}

TEST(ImpersonationListTest, OlderWriterEndsAtALayer) {
  // Version 8, ending after the list's user name: the later layers keep
  // the defaults, and a missing user name still takes the list's.
  const std::string v8 = HexBytes(
      "01 2a 00 08 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 01 00 00 00"
      "| 54 04 07 00 00 00 | 53 02 00 01 'M' | 53 01 00 01 | 53 01 00 01"
      "| 53 02 00 01 'L'");
  ImpersonationDataStreamableList list;
  EXPECT_EQ(list.ReadFrom(v8.data(), v8.size()), v8.size());
  ASSERT_EQ(list.size(), 1u);
  EXPECT_EQ(list.front().m_szMember, "M");
  EXPECT_EQ(list.front().m_szUserName, "L");
  EXPECT_EQ(list.front().m_mgtId, -1);
  EXPECT_TRUE(list.front().m_canViewSingleBrokerDataOnly);
}

TEST(ImpersonationListTest, CountBeyondTheBytesRaises) {
  struct Case {
    const char* name;
    const char* hex;
  };
  const Case cases[] = {
      {"huge count",
       "01 12 00 09 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 ff ff ff 7f"},
      {"two promised, one there",
       "01 24 00 09 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 02 00 00 00"
       "| 54 04 07 00 00 00 | 53 02 00 01 'M' | 53 01 00 01 | 53 01 00 01"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string bytes = HexBytes(c.hex);
    ImpersonationDataStreamableList list;
    EXPECT_THROW(list.ReadFrom(bytes.data(), bytes.size()),
                 nv_ns::StreamingException);
    EXPECT_TRUE(list.empty());
  }
  // An older writer's object that ends after its count holds no elements.
  const std::string old =
      HexBytes("01 12 00 02 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 ff ff ff 7f");
  ImpersonationDataStreamableList list;
  list.ReadFrom(old.data(), old.size());
  EXPECT_TRUE(list.empty());
  // A negative count is no elements.
  const std::string negative = HexBytes(
      "01 17 00 09 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 ff ff ff ff"
      "| 53 02 00 01 'L'");
  list.ReadFrom(negative.data(), negative.size());
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.m_userName, "L");
}

}  // namespace
}  // namespace nv_opaque_ns
