// The variable-length unsigned integer of the core stream, which prefixes
// every string with its byte length:
//
//   varint := byte{0..4} last
//   byte   := 1xxxxxxx          (top bit set: more bytes follow)
//   last   := 0xxxxxxx, or the fifth byte whatever its top bit
//
// The groups of 7 bits are big-endian: the first byte holds the highest
// bits. Under 0x80 takes one byte, under 0x4000 two, under 0x200000 three,
// under 0x10000000 four, anything else five. 300 is 0x82 0x2C.
#ifndef NVSHARED_PLATFORM_STREAM_VAR_INT_H_
#define NVSHARED_PLATFORM_STREAM_VAR_INT_H_

#include <cstddef>
#include <cstdint>

namespace dv_stream_ns {

inline constexpr std::size_t kMaxVarIntBytes = 5;

// Bytes that `value` takes on the wire.
constexpr std::size_t VarIntSize(std::uint32_t value) {
  return value < 0x80u         ? 1
         : value < 0x4000u     ? 2
         : value < 0x200000u   ? 3
         : value < 0x10000000u ? 4
                               : 5;
}

// Writes `value` into `out` (room for kMaxVarIntBytes); returns the bytes
// written.
constexpr std::size_t EncodeVarInt(std::uint32_t value, unsigned char* out) {
  const std::size_t size = VarIntSize(value);
  for (std::size_t i = size; i-- > 0;) {
    out[i] = static_cast<unsigned char>(value & 0x7Fu) |
             (i + 1 == size ? 0u : 0x80u);
    value >>= 7;
  }
  return size;
}

// Reads one varint from the `size` bytes at `in`. Returns the bytes it took,
// or 0 if they end before the varint does (`value` is then untouched). The
// fifth byte ends the varint whatever its top bit; bits above 32 that five
// bytes could carry are dropped.
constexpr std::size_t DecodeVarInt(const unsigned char* in, std::size_t size,
                                   std::uint32_t& value) {
  std::uint32_t result = 0;
  for (std::size_t i = 0; i < kMaxVarIntBytes; ++i) {
    if (i == size) return 0;
    result = (result << 7) | (in[i] & 0x7Fu);
    if ((in[i] & 0x80u) == 0 || i + 1 == kMaxVarIntBytes) {
      value = result;
      return i + 1;
    }
  }
  return 0;  // not reached
}

}  // namespace dv_stream_ns

#endif  // NVSHARED_PLATFORM_STREAM_VAR_INT_H_
