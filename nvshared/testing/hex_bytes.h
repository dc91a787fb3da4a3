// Byte strings written as hex in tests: HexBytes("01 2a 00 'C' 'K'") gives
// the bytes 0x01 0x2a 0x00 'C' 'K'. Pairs of hex digits are bytes; a quoted
// character stands for itself; blanks, newlines and '|' only separate.
#ifndef NVSHARED_TESTING_HEX_BYTES_H_
#define NVSHARED_TESTING_HEX_BYTES_H_

#include <stdexcept>
#include <string>
#include <string_view>

namespace nvshared::testing {

inline std::string HexBytes(std::string_view text) {
  auto digit = [](char c) -> int {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    throw std::invalid_argument("HexBytes: not a hex digit");
  };
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i];
    if (c == ' ' || c == '\n' || c == '|') {
      ++i;
    } else if (c == '\'' && i + 2 < text.size() && text[i + 2] == '\'') {
      out += text[i + 1];
      i += 3;
    } else if (i + 1 < text.size()) {
      out += static_cast<char>(digit(c) * 16 + digit(text[i + 1]));
      i += 2;
    } else {
      throw std::invalid_argument("HexBytes: odd digit");
    }
  }
  return out;
}

// The bytes as lower-case hex pairs separated by blanks, for failure output.
inline std::string ToHex(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string out;
  for (unsigned char c : bytes) {
    if (!out.empty()) out += ' ';
    out += kDigits[c >> 4];
    out += kDigits[c & 15];
  }
  return out;
}

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_HEX_BYTES_H_
