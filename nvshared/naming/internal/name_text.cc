#include "nvshared/naming/internal/name_text.h"

#include <cstdlib>
#include <cwchar>
#include <cwctype>

namespace nv_fmt::internal {
namespace {

// One character of the text: its length in bytes and whether it is space.
struct Char {
  std::size_t length;
  bool space;
};

bool IsUnicodeSpace(char32_t c) {
  return (c >= 0x09 && c <= 0x0D) || c == 0x20 || c == 0x85 || c == 0xA0 ||
         c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
         c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

// A UTF-8 character at the front of `text`; an invalid or cut sequence is
// one byte that is not space.
Char NextUtf8(std::string_view text) {
  const auto b0 = static_cast<unsigned char>(text[0]);
  if (b0 < 0x80) return {1, IsUnicodeSpace(b0)};
  std::size_t length = 0;
  char32_t c = 0;
  if ((b0 & 0xE0) == 0xC0) {
    length = 2;
    c = b0 & 0x1F;
  } else if ((b0 & 0xF0) == 0xE0) {
    length = 3;
    c = b0 & 0x0F;
  } else if ((b0 & 0xF8) == 0xF0) {
    length = 4;
    c = b0 & 0x07;
  } else {
    return {1, false};
  }
  if (text.size() < length) return {1, false};
  for (std::size_t i = 1; i < length; ++i) {
    const auto b = static_cast<unsigned char>(text[i]);
    if ((b & 0xC0) != 0x80) return {1, false};
    c = (c << 6) | (b & 0x3F);
  }
  return {length, IsUnicodeSpace(c)};
}

// A character of the locale's multibyte encoding.
Char NextLocale(std::string_view text, std::mbstate_t& state) {
  wchar_t wc = 0;
  const std::size_t n = std::mbrtowc(&wc, text.data(), text.size(), &state);
  if (n == static_cast<std::size_t>(-1) || n == static_cast<std::size_t>(-2)) {
    state = std::mbstate_t{};
    return {1, false};
  }
  if (n == 0) return {1, false};  // an embedded NUL
  return {n, std::iswspace(static_cast<std::wint_t>(wc)) != 0};
}

}  // namespace

std::string TrimName(std::string_view text) {
  // A single-byte locale is the "C" locale of a process that never chose
  // one: read UTF-8 then, the encoding hosts on this platform use.
  const bool utf8 = MB_CUR_MAX == 1;
  std::mbstate_t state{};
  std::size_t begin = text.size();
  std::size_t end = 0;
  for (std::size_t pos = 0; pos < text.size();) {
    const Char c =
        utf8 ? NextUtf8(text.substr(pos)) : NextLocale(text.substr(pos), state);
    if (!c.space) {
      if (begin == text.size()) begin = pos;
      end = pos + c.length;
    }
    pos += c.length;
  }
  if (begin >= end) return std::string();
  return std::string(text.substr(begin, end - begin));
}

std::string ExpandInserts(std::string_view text,
                          const std::vector<std::string>& args,
                          std::size_t capacity) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%' || i + 1 >= text.size()) {
      out += text[i];
      continue;
    }
    const char next = text[++i];
    if (next >= '1' && next <= '9') {
      std::size_t number = static_cast<std::size_t>(next - '0');
      if (i + 1 < text.size() && text[i + 1] >= '0' && text[i + 1] <= '9') {
        number = number * 10 + static_cast<std::size_t>(text[++i] - '0');
      }
      // A printf-style type between '!' marks; arguments are all strings.
      if (i + 1 < text.size() && text[i + 1] == '!') {
        const std::size_t close = text.find('!', i + 2);
        if (close != std::string_view::npos) i = close;
      }
      if (number <= args.size()) out += args[number - 1];
    } else if (next == '0') {
      break;
    } else if (next == 'n') {
      out += "\r\n";
    } else {
      out += next;
    }
  }
  if (capacity == 0) return std::string();
  if (out.size() > capacity - 1) out.resize(capacity - 1);
  return out;
}

}  // namespace nv_fmt::internal
