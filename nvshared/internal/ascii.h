// ASCII-only helpers for names, keys and dates that the library compares or
// reads. Unlike std::tolower and std::toupper they take any char (a byte
// >= 0x80 is left as it is, never undefined behaviour) and ignore the
// process's locale, so results are the same on every host.
//
// Header-only and internal: never installed, never exported.
#ifndef NVSHARED_INTERNAL_ASCII_H_
#define NVSHARED_INTERNAL_ASCII_H_

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

namespace nvshared::internal {

constexpr char AsciiToLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char AsciiToUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr bool AsciiIsDigit(char c) { return c >= '0' && c <= '9'; }

inline std::string AsciiLower(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = AsciiToLower(c);
  return out;
}

constexpr bool AsciiEqualIgnoreCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (AsciiToLower(a[i]) != AsciiToLower(b[i])) return false;
  }
  return true;
}

// A date written "YYYY-MM-DD", or "YYYY-MM" where the day may be left out
// (day 0 then). Digits only in every place, month 1-12, day 1-31; whether
// the day exists in that month is the caller's question.
struct IsoDate {
  int year = 0;
  int month = 0;
  int day = 0;
};

inline std::optional<IsoDate> ParseIsoDate(std::string_view text,
                                           bool dayOptional = false) {
  const bool withDay = text.size() == 10;
  if (!withDay && !(dayOptional && text.size() == 7)) return std::nullopt;
  const auto number = [&](std::size_t at, std::size_t len, int& out) {
    for (std::size_t i = at; i < at + len; ++i) {
      if (!AsciiIsDigit(text[i])) return false;
    }
    std::from_chars(text.data() + at, text.data() + at + len, out);
    return true;
  };
  IsoDate date;
  if (text[4] != '-' || !number(0, 4, date.year) ||
      !number(5, 2, date.month) || date.month < 1 || date.month > 12) {
    return std::nullopt;
  }
  if (withDay && (text[7] != '-' || !number(8, 2, date.day) || date.day < 1 ||
                  date.day > 31)) {
    return std::nullopt;
  }
  return date;
}

}  // namespace nvshared::internal

#endif  // NVSHARED_INTERNAL_ASCII_H_
