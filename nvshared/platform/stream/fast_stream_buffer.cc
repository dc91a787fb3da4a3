#include "nvshared/platform/stream/fast_stream_buffer.h"

#include <limits>
#include <utility>

#include "nvshared/platform/stream/stream_exceptions.h"

namespace dv_stream_ns {
namespace {

constexpr std::size_t kMaxSize = std::numeric_limits<std::size_t>::max();

// floor(1.75 * x), exactly, in integers; 0 if it would not fit.
std::size_t SevenQuarters(std::size_t x) {
  if (x > kMaxSize / 7 * 4) return 0;
  return x / 4 * 7 + x % 4 * 7 / 4;
}

}  // namespace

FastStreamBuffer::FastStreamBuffer(std::size_t capacity, bool mayGrow)
    : data_(capacity == 0 ? nullptr : new char[capacity]),
      capacity_(capacity),
      may_grow_(mayGrow) {}

FastStreamBuffer::FastStreamBuffer(char* store, std::size_t capacity,
                                   std::size_t size, bool mayGrow)
    : data_(store),
      capacity_(store == nullptr ? 0 : capacity),
      write_(size < capacity_ ? size : capacity_),
      owned_(false),
      may_grow_(mayGrow) {}

// The store is declared const by the caller. It is never written through:
// every write path goes to MakeRoom while read_only_ is set, and MakeRoom
// either refuses or moves the bytes to an owned store first.
FastStreamBuffer::FastStreamBuffer(const char* data, std::size_t size)
    : FastStreamBuffer(const_cast<char*>(data), size, size, false) {
  read_only_ = true;
}

FastStreamBuffer::FastStreamBuffer(FastStreamBuffer&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)),
      capacity_(std::exchange(other.capacity_, 0)),
      write_(std::exchange(other.write_, 0)),
      read_(std::exchange(other.read_, 0)),
      owned_(std::exchange(other.owned_, true)),
      may_grow_(other.may_grow_),
      read_only_(std::exchange(other.read_only_, false)) {}

FastStreamBuffer& FastStreamBuffer::operator=(
    FastStreamBuffer&& other) noexcept {
  if (this != &other) {
    Release();
    data_ = std::exchange(other.data_, nullptr);
    capacity_ = std::exchange(other.capacity_, 0);
    write_ = std::exchange(other.write_, 0);
    read_ = std::exchange(other.read_, 0);
    owned_ = std::exchange(other.owned_, true);
    may_grow_ = other.may_grow_;
    read_only_ = std::exchange(other.read_only_, false);
  }
  return *this;
}

FastStreamBuffer::~FastStreamBuffer() { Release(); }

void FastStreamBuffer::Release() {
  if (owned_) delete[] data_;
  data_ = nullptr;
}

void FastStreamBuffer::MakeRoom(std::size_t n) {
  if (!may_grow_) throw StreamOverflow(FlatOverflowText(n, capacity_, write_));
  const std::size_t needed = n > kMaxSize - write_ ? 0 : write_ + n;
  // A read-only store is copied even when it has room: it is never written.
  std::size_t grown =
      capacity_ == 0
          ? kFirstGrowth
          : (n > kMaxSize - capacity_ ? 0 : SevenQuarters(capacity_ + n));
  // From capacity 0 the first step is 1792 whatever is needed; a larger
  // first write would not fit, so the rule is applied again from 1792
  // until it does rather than writing past the new store.
  while (grown != 0 && grown < needed) {
    grown = n > kMaxSize - grown ? 0 : SevenQuarters(grown + n);
  }
  if (needed == 0 || grown == 0) {
    throw StreamOverflow(FlatOverflowText(n, capacity_, write_));
  }
  char* store = new char[grown];
  if (write_ != 0) std::memcpy(store, data_, write_);
  Release();
  data_ = store;
  capacity_ = grown;
  owned_ = true;
  read_only_ = false;
}

}  // namespace dv_stream_ns
