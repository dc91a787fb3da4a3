#include <cstdint>

#include "nvshared/platform/os/wide_text.h"

namespace nvshared::os {

static_assert(sizeof(wchar_t) == 4, "wide text is taken as UTF-32");

std::optional<std::string> WideToUtf8(std::wstring_view text,
                                      std::size_t maxBytes) {
  std::string out;
  for (const wchar_t wide : text) {
    const auto cp = static_cast<std::uint32_t>(wide);
    if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return std::nullopt;
    const std::size_t size = cp < 0x80      ? 1
                             : cp < 0x800   ? 2
                             : cp < 0x10000 ? 3
                                            : 4;
    if (size > maxBytes || out.size() > maxBytes - size) return std::nullopt;
    if (size == 1) {
      out += static_cast<char>(cp);
      continue;
    }
    // Lead byte: `size` high bits set, then the top bits of the code point;
    // each continuation byte carries six more bits under 10xxxxxx.
    static constexpr std::uint32_t kLead[] = {0, 0, 0xC0, 0xE0, 0xF0};
    out += static_cast<char>(kLead[size] | (cp >> (6 * (size - 1))));
    for (std::size_t i = size - 1; i > 0; --i) {
      out += static_cast<char>(0x80 | ((cp >> (6 * (i - 1))) & 0x3F));
    }
  }
  return out;
}

}  // namespace nvshared::os
