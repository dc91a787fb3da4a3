// dv_coreutils_ns::CharPtrWrapper: a possibly absent, owned text. The buffer
// holds the length as a signed 16-bit number, the characters and a NUL, as
// the core library lays it out. A value; copies are deep.
#ifndef NVSHARED_PLATFORM_CORE_CHAR_PTR_WRAPPER_H_
#define NVSHARED_PLATFORM_CORE_CHAR_PTR_WRAPPER_H_

#include <cstddef>
#include <memory>
#include <string_view>

#include "nvshared/export.h"

namespace dv_coreutils_ns {

class NVSHARED_API CharPtrWrapper {
 public:
  // The longest text a wrapper holds; longer input is cut to it.
  static constexpr std::size_t kMaxLength = 32767;

  // Absent.
  CharPtrWrapper() = default;
  explicit CharPtrWrapper(std::string_view text) { Assign(text); }
  CharPtrWrapper(const CharPtrWrapper& other);
  CharPtrWrapper& operator=(const CharPtrWrapper& other);
  CharPtrWrapper(CharPtrWrapper&&) noexcept = default;
  CharPtrWrapper& operator=(CharPtrWrapper&&) noexcept = default;
  ~CharPtrWrapper() = default;

  // Replaces the text; an empty view still makes the wrapper non-null.
  void Assign(std::string_view text);
  // Makes the wrapper absent (null).
  void Reset() { buffer_.reset(); }

  // The characters; never null: an absent text yields "".
  const char* c_str() const { return buffer_ ? buffer_.get() + 2 : ""; }
  // The stored length; 0 when absent.
  std::size_t size() const;
  bool IsNull() const { return buffer_ == nullptr; }
  // Non-null with a non-zero first character.
  bool IsPresent() const { return buffer_ && buffer_[2] != '\0'; }

 private:
  std::unique_ptr<char[]> buffer_;
};

}  // namespace dv_coreutils_ns

#endif  // NVSHARED_PLATFORM_CORE_CHAR_PTR_WRAPPER_H_
