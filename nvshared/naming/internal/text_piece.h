// A short piece of a name, built in a fixed buffer with the integer
// conversions of printf ("%d", "%+d", "%02d", "%0*d"), and cut to a limit as
// snprintf into a buffer of that size would cut it. Names are built on every
// repaint; formatting their few numbers by hand costs a fraction of a
// snprintf call.
#ifndef NVSHARED_NAMING_INTERNAL_TEXT_PIECE_H_
#define NVSHARED_NAMING_INTERNAL_TEXT_PIECE_H_

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace nv_fmt::internal {

class TextPiece {
 public:
  TextPiece& Char(char c) {
    if (size_ < kCapacity) buffer_[size_++] = c;
    return *this;
  }

  TextPiece& Text(std::string_view text) {
    for (char c : text) Char(c);
    return *this;
  }

  // `value` as printf prints it with the given field width: a negative
  // width pads with blanks on the right, a positive one on the left with
  // blanks, or with zeros after the sign when `zeroPad` is set. `plus`
  // prints "+" before a value that is not negative.
  TextPiece& Int(long long value, int width = 0, bool zeroPad = false,
                 bool plus = false) {
    char digits[24];
    int n = 0;
    unsigned long long magnitude =
        value < 0 ? 0ULL - static_cast<unsigned long long>(value)
                  : static_cast<unsigned long long>(value);
    do {
      digits[n++] = static_cast<char>('0' + magnitude % 10);
      magnitude /= 10;
    } while (magnitude != 0);
    const char sign = value < 0 ? '-' : (plus ? '+' : '\0');
    const int length = n + (sign != '\0' ? 1 : 0);
    const bool left = width < 0;
    const int field = left ? -width : width;
    const int padding = std::max(0, field - length);
    if (!left && !zeroPad) Repeat(' ', padding);
    if (sign != '\0') Char(sign);
    if (!left && zeroPad) Repeat('0', padding);
    while (n > 0) Char(digits[--n]);
    if (left) Repeat(' ', padding);
    return *this;
  }

  std::string_view View() const { return {buffer_, size_}; }

  // Appends at most `limit` characters of the piece to `out`.
  void AppendTo(std::string& out, std::size_t limit) const {
    out.append(buffer_, std::min(size_, limit));
  }

 private:
  void Repeat(char c, int count) {
    for (int i = 0; i < count; ++i) Char(c);
  }

  // Wider than any limit a caller asks for, so cutting happens in AppendTo.
  static constexpr std::size_t kCapacity = 64;
  char buffer_[kCapacity];
  std::size_t size_ = 0;
};

}  // namespace nv_fmt::internal

#endif  // NVSHARED_NAMING_INTERNAL_TEXT_PIECE_H_
