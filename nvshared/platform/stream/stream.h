// dv_stream_ns::Stream: the core stream, a plain sequence of values with no
// tags and no per-object header. Each transfer of a member goes to the
// first back end the stream has:
//   1. a FastStreamBuffer (flat memory; the bytes are described below);
//   2. otherwise its Protocol, which sees each member's name and type.
// A stream with neither throws StreamExceptionBase(kNoBackEndText).
//
// Bytes on a flat buffer:
//   scalar := its sizeof(T) bytes, little-endian, in memory order; no tag,
//             no alignment. A bool is one byte, 1 or 0; any non-zero byte
//             reads as true.
//   string := varint(byte length) byte*        (varint: see var_int.h)
//   start  := 'V' 'I' 'A' flags                (only while a tag is pending)
//
// Start tag: a stream may hold a pending start tag for writing and one for
// reading, kept apart. The first write transfer then writes the 4 tag bytes
// before its member; the first read transfer reads 4 bytes and requires the
// first three to be "VIA" (StreamUnderflow "VIA TAG is missing"). Either way
// the mark is cleared. A Protocol frames messages itself: on a stream
// without a flat buffer the marks are cleared and no tag is transferred.
//
// Failures are StreamUnderflow and StreamOverflow with the texts of
// stream_exceptions.h. A read that fails consumes nothing of the member it
// failed on, and the member keeps its value; a write that fails writes
// nothing of its member. Reads never size an allocation from a length
// that the buffer does not hold.
//
// Ownership: the stream borrows its buffer and its Protocol; both must
// outlive it. Threads: a stream belongs to one thread at a time.
#ifndef NVSHARED_PLATFORM_STREAM_STREAM_H_
#define NVSHARED_PLATFORM_STREAM_STREAM_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <typeinfo>

#include "nvshared/export.h"
#include "nvshared/platform/stream/fast_stream_buffer.h"
#include "nvshared/platform/stream/protocol.h"

namespace dv_stream_ns {

// The member types a Stream carries as scalars.
template <class T>
concept StreamScalar = std::is_arithmetic_v<T>;

class NVSHARED_API Stream {
 public:
  // The 4 bytes of the start tag are "VIA" and a byte of flags.
  static constexpr std::size_t kStartTagSize = 4;

  // A stream with no back end yet.
  Stream() = default;
  explicit Stream(FastStreamBuffer* buffer, Protocol* proto = nullptr)
      : buffer_(buffer), proto_(proto) {}
  explicit Stream(Protocol* proto) : proto_(proto) {}
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  FastStreamBuffer* GetBuffer() const { return buffer_; }
  void SetBuffer(FastStreamBuffer* buffer) { buffer_ = buffer; }
  Protocol* GetProto() const { return proto_; }
  void SetProto(Protocol* proto) { proto_ = proto; }

  // Makes the next write transfer begin with "VIA" and `flags`.
  void PendWriteStartTag(unsigned char flags = 0) {
    write_tag_pending_ = true;
    write_tag_flags_ = flags;
  }
  // Makes the next read transfer begin by checking a start tag.
  void PendReadStartTag() { read_tag_pending_ = true; }
  bool write_start_tag_pending() const { return write_tag_pending_; }
  bool read_start_tag_pending() const { return read_tag_pending_; }
  // The fourth byte of the last start tag read; 0 before one is read.
  unsigned char read_start_tag_flags() const { return read_tag_flags_; }

  template <StreamScalar T>
  void Write(const char* name, const T& value) {
    if (buffer_ != nullptr) {
      if (write_tag_pending_) WriteStartTag();
      if constexpr (std::is_same_v<T, bool>) {
        const unsigned char byte = value ? 1 : 0;
        buffer_->Write(&byte, 1);
      } else {
        buffer_->Write(&value, sizeof(T));
      }
    } else {
      ToProto(name)->WriteScalar(name, typeid(T).name(), std::is_signed_v<T>,
                                 sizeof(T), &value);
    }
  }

  template <StreamScalar T>
  void Read(const char* name, T& value) {
    if (buffer_ != nullptr) {
      if (read_tag_pending_) ReadStartTag();
      if constexpr (std::is_same_v<T, bool>) {
        // Copied through a byte: a bool may hold only 0 or 1.
        unsigned char byte;
        if (!buffer_->Read(&byte, 1)) ThrowScalarUnderflow();
        value = byte != 0;
      } else {
        if (!buffer_->Read(&value, sizeof(T))) ThrowScalarUnderflow();
      }
    } else {
      ToProto(name)->ReadScalar(name, typeid(T).name(), std::is_signed_v<T>,
                                sizeof(T), &value);
    }
  }

  void Write(const char* name, const std::string& value);
  // Writes `size` bytes at `data` as a string, exactly as Write of a
  // std::string holding them, without building one on the flat buffer.
  void WriteStringBytes(const char* name, const char* data, std::size_t size);
  void Read(const char* name, std::string& value);

  // A bare variable-length integer. On a Protocol it goes as an unsigned
  // 32-bit scalar under `name`.
  void WriteVarInt(const char* name, std::uint32_t value);
  std::uint32_t ReadVarInt(const char* name);

  // Writes `value` if `direction` is non-zero, else reads it. This is how
  // a Streamable's Transfer walks its members once for both directions.
  template <class T>
  Stream& Transfer(const char* name, T& value, int direction) {
    if (direction != 0) {
      Write(name, static_cast<const T&>(value));
    } else {
      Read(name, value);
    }
    return *this;
  }

 private:
  void WriteStartTag();
  void ReadStartTag();
  // The Protocol, or StreamExceptionBase if there is none. Clears the start
  // tag marks, which a Protocol does not carry.
  Protocol* ToProto(const char* name);
  [[noreturn]] static void ThrowScalarUnderflow();

  FastStreamBuffer* buffer_ = nullptr;
  Protocol* proto_ = nullptr;
  bool write_tag_pending_ = false;
  bool read_tag_pending_ = false;
  unsigned char write_tag_flags_ = 0;
  unsigned char read_tag_flags_ = 0;
};

}  // namespace dv_stream_ns

#endif  // NVSHARED_PLATFORM_STREAM_STREAM_H_
