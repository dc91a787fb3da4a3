// Conversion of wide text to the narrow text the rest of the library works
// in. On Linux a wchar_t holds one Unicode code point and narrow text is
// UTF-8, whatever the locale, so this stands in for converting to the
// system's code page.
//
// Threads: pure functions, safe anywhere.
#ifndef NVSHARED_PLATFORM_OS_WIDE_TEXT_H_
#define NVSHARED_PLATFORM_OS_WIDE_TEXT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "nvshared/export.h"

namespace nvshared::os {

// `text` as UTF-8, or nothing if it holds a value that is not a Unicode
// scalar value (a surrogate, or above U+10FFFF) or if the result would take
// more than `maxBytes` bytes. Like a conversion into a fixed buffer, it never
// returns a partial text.
std::optional<std::string> WideToUtf8(std::wstring_view text,
                                                   std::size_t maxBytes);

}  // namespace nvshared::os

#endif  // NVSHARED_PLATFORM_OS_WIDE_TEXT_H_
