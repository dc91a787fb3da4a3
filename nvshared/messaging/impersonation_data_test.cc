#include "nvshared/messaging/impersonation_data.h"

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "nvshared/testing/hex_bytes.h"

namespace nv_opaque_ns {
namespace {

using nvshared::testing::HexBytes;

TEST(ImpersonationDataTest, CompareKeepsItsSigns) {
  using Edit = std::function<void(ImpersonationData&)>;
  struct Case {
    const char* name;
    Edit a, b;
    int expected;  // the sign
  };
  const Edit none = [](ImpersonationData&) {};
  const Case cases[] = {
      {"equal", none, none, 0},
      {"broker before exchange", [](auto& a) { a.m_iBrokerId = 2; },
       [](auto& b) { b.m_iExchangeId = 9; }, 1},
      {"exchange less", none, [](auto& b) { b.m_iExchangeId = 0; }, -1},
      {"member before group", [](auto& a) { a.m_szMember = "A"; },
       [](auto& b) { b.m_szMember = "B", b.m_szGroup = "0"; }, -1},
      {"user name", [](auto& a) { a.m_szUserName = "b"; }, none, 1},
      {"password takes no part", [](auto& a) { a.m_szEncryptedPassword = "x"; },
       none, 0},
      // Company, MGT id and caretaker: 1 when a's is the less, else 0.
      {"company less", none, [](auto& b) { b.m_companyId = 2; }, 1},
      {"company greater reads equal", [](auto& a) { a.m_companyId = 2; },
       [](auto& b) { b.m_canViewSingleBrokerDataOnly = false; }, 0},
      {"broker flag", none,
       [](auto& b) { b.m_canViewSingleBrokerDataOnly = false; }, 1},
      {"company flag",
       [](auto& a) { a.m_canViewSingleCompanyDataOnly = false; }, none, -1},
      {"mgt less", [](auto& a) { a.m_mgtId = -2; }, none, 1},
      {"mgt greater reads equal", [](auto& a) { a.m_mgtId = 4; },
       [](auto& b) { b.m_nCaretakerID = 1; }, 0},
      {"caretaker less", none, [](auto& b) { b.m_nCaretakerID = ~0u; }, 1},
      {"caretaker greater reads equal", [](auto& a) { a.m_nCaretakerID = ~0u; },
       none, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ImpersonationData a, b;
    c.a(a);
    c.b(b);
    const int result = a.Compare(b);
    EXPECT_EQ((result > 0) - (result < 0), c.expected);
  }
}

TEST(ImpersonationListTest, ReadAppendsAndLaterLayersWalkTheWholeList) {
  // A count of one, but the later layers hold three entries, as a writer
  // whose list held two before the one it counted would leave them.
  const std::string bytes = HexBytes(
      "01 9d 00 09 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 01 00 00 00"
      "| 54 04 07 00 00 00 | 53 02 00 01 'M' | 53 01 00 01 | 53 01 00 01"
      "| 53 02 00 01 'L' | 53 01 00 01 | 53 01 00 01 | 53 01 00 01"
      "| 53 01 00 01 | 53 02 00 01 'X' | 53 01 00 01"
      "| 54 04 03 00 00 00 | 54 04 00 00 00 00 | 54 01 01 | 54 01 01"
      "| 54 04 ff ff ff ff"
      "| 54 04 04 00 00 00 | 54 04 00 00 00 00 | 54 01 01 | 54 01 01"
      "| 54 04 ff ff ff ff"
      "| 54 04 05 00 00 00 | 54 04 00 00 00 00 | 54 01 01 | 54 01 01"
      "| 54 04 ff ff ff ff"
      "| 54 04 00 00 00 00 | 54 04 00 00 00 00 | 54 04 06 00 00 00");
  ImpersonationDataStreamableList list;
  list.emplace_back().m_szUserName = "mine";
  list.emplace_back();
  EXPECT_EQ(list.ReadFrom(bytes.data(), bytes.size()), bytes.size());
  ASSERT_EQ(list.size(), 3u);
  auto it = list.begin();
  EXPECT_EQ(it->m_iBrokerId, 3);
  EXPECT_EQ(it->m_szUserName, "L");  // read empty, lent the list's
  EXPECT_EQ((++it)->m_szUserName, "X");
  EXPECT_EQ((++it)->m_szMember, "M");
  EXPECT_EQ(it->m_szUserName, "L");
  EXPECT_EQ(it->m_iBrokerId, 5);
  EXPECT_EQ(it->m_nCaretakerID, 6u);
}

TEST(ImpersonationListTest, CountsAndVersions) {
  struct Case {
    const char* name;
    const char* hex;
    bool raises;
    std::size_t size;
  };
  const Case cases[] = {
      {"count beyond the bytes",
       "01 12 00 09 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 ff ff ff 7f", true, 0},
      // An older writer that ends after the count holds no elements.
      {"old, ends after count",
       "01 12 00 02 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 ff ff ff 7f", false, 0},
      {"negative count",
       "01 17 00 09 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 ff ff ff ff"
       "| 53 02 00 01 'L'",
       false, 0},
      // Version 8 ending after the list's name: later layers keep defaults,
      // and the element still takes the list's name.
      {"old, ends after layer 3",
       "01 2a 00 08 00 00 00 'I' 'M' 'L' 'T' 00 | 54 04 01 00 00 00"
       "| 54 04 07 00 00 00 | 53 02 00 01 'M' | 53 01 00 01 | 53 01 00 01"
       "| 53 02 00 01 'L'",
       false, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string bytes = HexBytes(c.hex);
    ImpersonationDataStreamableList list;
    if (c.raises) {
      EXPECT_THROW(list.ReadFrom(bytes.data(), bytes.size()),
                   nv_ns::StreamingException);
    } else {
      list.ReadFrom(bytes.data(), bytes.size());
    }
    ASSERT_EQ(list.size(), c.size);
    if (c.size == 1) {
      EXPECT_EQ(list.front().m_szUserName, "L");
      EXPECT_EQ(list.front().m_mgtId, -1);
    }
  }
}

}  // namespace
}  // namespace nv_opaque_ns
