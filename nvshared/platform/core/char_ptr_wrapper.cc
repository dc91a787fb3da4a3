#include "nvshared/platform/core/char_ptr_wrapper.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace dv_coreutils_ns {

CharPtrWrapper::CharPtrWrapper(const CharPtrWrapper& other) {
  if (other.buffer_) Assign(std::string_view(other.c_str(), other.size()));
}

CharPtrWrapper& CharPtrWrapper::operator=(const CharPtrWrapper& other) {
  if (this == &other) return *this;
  if (other.buffer_) {
    Assign(std::string_view(other.c_str(), other.size()));
  } else {
    buffer_.reset();
  }
  return *this;
}

void CharPtrWrapper::Assign(std::string_view text) {
  const std::size_t n = std::min(text.size(), kMaxLength);
  auto buffer = std::make_unique<char[]>(n + 3);
  const auto length = static_cast<std::int16_t>(n);
  std::memcpy(buffer.get(), &length, sizeof length);
  if (n > 0) std::memcpy(buffer.get() + 2, text.data(), n);
  buffer[n + 2] = '\0';
  buffer_ = std::move(buffer);
}

std::size_t CharPtrWrapper::size() const {
  if (!buffer_) return 0;
  std::int16_t length = 0;
  std::memcpy(&length, buffer_.get(), sizeof length);
  return static_cast<std::size_t>(length);
}

}  // namespace dv_coreutils_ns
