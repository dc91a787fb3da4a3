// The capture form of a whole OpaqueDataMessage or dictionary: the bytes
// that nvtool reads and writes, and what a host can log or send to carry
// every attachment of a message at once. All integers little-endian:
//
//   capture := magic:char[4] count:u16 entry{count}
//   magic   := "NVOM"   an OpaqueDataMessage's attachments
//            | "NVOD"   a dictionary's entries
//   entry   := id:i16 length:u32 byte[length]
//
// A message's entries come in the order the attachments were first stored, a
// dictionary's by ascending id. A reader accepts a capture only if every
// length fits in what remains, no id comes twice, nothing follows the last
// entry and the whole is at most kMaxCaptureLength bytes. A null dictionary
// entry is written with length 0 and reads back as an empty buffer.
//
// Pure functions over values; safe from any thread on distinct arguments.
#ifndef NVSHARED_PLATFORM_UTILS_OPAQUE_CAPTURE_H_
#define NVSHARED_PLATFORM_UTILS_OPAQUE_CAPTURE_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "nvshared/export.h"
#include "nvshared/platform/core/opaque_data_message.h"
#include "nvshared/platform/utils/data_buffer.h"
#include "nvshared/status.h"

namespace nv_ns {

struct NVSHARED_API OpaqueCapture {
  enum class Carrier { kMessage, kDictionary };

  static constexpr char kMessageMagic[5] = "NVOM";
  static constexpr char kDictionaryMagic[5] = "NVOD";
  static constexpr std::size_t kHeaderLength = 6;
  static constexpr std::size_t kEntryHeaderLength = 6;
  // Far above any real message (a block is at most 65535 bytes), low enough
  // that a reader never holds an absurd input.
  static constexpr std::size_t kMaxCaptureLength = 16 * 1024 * 1024;

  Carrier carrier = Carrier::kMessage;
  // The attachments of a "NVOM" capture; empty for "NVOD".
  dv_core_ns::OpaqueDataMessage message;
  // The entries of a "NVOD" capture; empty for "NVOM".
  dictionary entries;

  // Fails when the result would exceed kMaxCaptureLength or a count or
  // length its field.
  [[nodiscard]] static nvshared::StatusOr<std::string> Save(
      const dv_core_ns::OpaqueDataMessage& message);
  [[nodiscard]] static nvshared::StatusOr<std::string> Save(
      const dictionary& entries);
  // Parses a capture; the error names the entry and what is wrong with it.
  [[nodiscard]] static nvshared::StatusOr<OpaqueCapture> Read(
      std::string_view bytes);
};

}  // namespace nv_ns

#endif  // NVSHARED_PLATFORM_UTILS_OPAQUE_CAPTURE_H_
