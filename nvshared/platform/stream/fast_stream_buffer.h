// dv_stream_ns::FastStreamBuffer: one flat memory buffer with a write
// position and a read position, the fast back end of a Stream. Bytes are
// written at the write position and read from the read position; what can
// be read is what lies between the two.
//
// The store is either owned (allocated and freed by the buffer) or borrowed
// from the caller, who keeps it alive and unchanged while the buffer uses
// it. A buffer that may grow replaces a store that lacks room with a larger
// owned one:
//   new capacity = floor(1.75 * (capacity + bytes needed)),
//   or 1792 (= 1.75 * 1024) when the capacity was 0.
// Old contents are copied and an owned old store is freed. A buffer that
// may not grow throws StreamOverflow at once.
//
// A buffer made over `const char*` is read-only: no write path ever writes
// into that store. A write to it throws StreamOverflow, or, if the caller
// has since allowed growth, first copies the bytes into an owned store and
// writes there.
//
// Threads: a buffer belongs to one thread at a time.
#ifndef NVSHARED_PLATFORM_STREAM_FAST_STREAM_BUFFER_H_
#define NVSHARED_PLATFORM_STREAM_FAST_STREAM_BUFFER_H_

#include <cstddef>
#include <cstring>

#include "nvshared/export.h"

namespace dv_stream_ns {

class NVSHARED_API FastStreamBuffer {
 public:
  // The capacity a buffer of capacity 0 grows to first.
  static constexpr std::size_t kFirstGrowth = 1792;

  // An empty owned buffer that may grow; it allocates on the first write.
  FastStreamBuffer() = default;
  // An owned buffer of `capacity` bytes, none of them written yet.
  explicit FastStreamBuffer(std::size_t capacity, bool mayGrow = true);
  // Borrows `store` of `capacity` bytes, of which the first `size` count as
  // written (readable). `size` above `capacity` is cut to `capacity`.
  FastStreamBuffer(char* store, std::size_t capacity, std::size_t size,
                   bool mayGrow);
  // Borrows `size` bytes for reading only: they all count as written, and
  // the buffer may not grow, so any write throws StreamOverflow and the
  // bytes are never changed (see read_only()).
  FastStreamBuffer(const char* data, std::size_t size);

  FastStreamBuffer(FastStreamBuffer&& other) noexcept;
  FastStreamBuffer& operator=(FastStreamBuffer&& other) noexcept;
  FastStreamBuffer(const FastStreamBuffer&) = delete;
  FastStreamBuffer& operator=(const FastStreamBuffer&) = delete;
  ~FastStreamBuffer();

  // Appends `n` bytes at the write position, growing first if needed.
  // Throws StreamOverflow (FlatOverflowText) if the buffer may not grow and
  // lacks room; nothing is written then.
  void Write(const void* source, std::size_t n) {
    if (read_only_ || n > capacity_ - write_) MakeRoom(n);
    if (n != 0) std::memcpy(data_ + write_, source, n);
    write_ += n;
  }

  // Copies `n` bytes from the read position and moves past them. False,
  // with nothing consumed, if fewer than `n` bytes are readable.
  [[nodiscard]] bool Read(void* target, std::size_t n) {
    if (n > readable()) return false;
    if (n != 0) std::memcpy(target, data_ + read_, n);
    read_ += n;
    return true;
  }

  // Makes room for `n` more bytes as Write would, without writing.
  void Reserve(std::size_t n) {
    if (read_only_ || n > capacity_ - write_) MakeRoom(n);
  }

  const char* data() const { return data_; }
  std::size_t capacity() const { return capacity_; }
  std::size_t write_position() const { return write_; }
  std::size_t read_position() const { return read_; }
  // Bytes between the read and the write position.
  std::size_t readable() const { return write_ - read_; }
  bool owns_store() const { return owned_; }
  // True while the store is a caller's read-only bytes.
  bool read_only() const { return read_only_; }
  bool may_grow() const { return may_grow_; }
  void set_may_grow(bool mayGrow) { may_grow_ = mayGrow; }

  // Moves the read position; it is kept at or before the write position.
  void set_read_position(std::size_t position) {
    read_ = position < write_ ? position : write_;
  }
  // Forgets what was written and read; the store stays (a read-only one
  // stays read-only: the next write copies or throws).
  void Clear() { write_ = read_ = 0; }

 private:
  // Grows for `n` more bytes or throws StreamOverflow.
  void MakeRoom(std::size_t n);
  void Release();

  char* data_ = nullptr;
  std::size_t capacity_ = 0;
  std::size_t write_ = 0;
  std::size_t read_ = 0;
  bool owned_ = true;
  bool may_grow_ = true;
  bool read_only_ = false;
};

}  // namespace dv_stream_ns

#endif  // NVSHARED_PLATFORM_STREAM_FAST_STREAM_BUFFER_H_
