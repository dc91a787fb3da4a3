#include "nvshared/platform/os/wide_text.h"

#include <string>

#include <gtest/gtest.h>

namespace nvshared::os {
namespace {

TEST(WideToUtf8, EncodesEachLengthAtItsBounds) {
  const std::pair<std::wstring, std::string> cases[] = {
      {L"", ""},
      {std::wstring(1, L'\0') + L"a\u007f", std::string(1, '\0') + "a\x7f"},
      {L"\u0080\u07ff", "\xc2\x80\xdf\xbf"},
      {L"\u0800\u20ac\ud7ff\ue000\uffff",
       "\xe0\xa0\x80\xe2\x82\xac\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbf"},
      {L"\U00010000\U0010FFFF", "\xf0\x90\x80\x80\xf4\x8f\xbf\xbf"},
  };
  for (const auto& [wide, utf8] : cases) {
    SCOPED_TRACE(utf8);
    EXPECT_EQ(WideToUtf8(wide, 100), utf8);
  }
}

TEST(WideToUtf8, RefusesNonCharactersAndWhatDoesNotFit) {
  for (const unsigned int bad : {0xD800u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(bad);
    EXPECT_EQ(WideToUtf8(std::wstring(L"ok") + static_cast<wchar_t>(bad), 100),
              std::nullopt);
  }
  EXPECT_EQ(WideToUtf8(L"\u20ac\u20ac", 6), "\xe2\x82\xac\xe2\x82\xac");
  EXPECT_EQ(WideToUtf8(L"\u20ac\u20ac", 5), std::nullopt);
}

}  // namespace
}  // namespace nvshared::os
