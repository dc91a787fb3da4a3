// nv_ns::DataBuffer, a byte array with its size that owns the array, and
// nv_ns::dictionary, the map from a 16-bit id to a shared, read-only buffer:
// the second carrier of message blocks beside dv_core_ns::OpaqueDataMessage.
// A buffer is never changed once stored in a dictionary, so one shared among
// threads may be read from any of them; the dictionary itself belongs to one
// thread at a time.
#ifndef NVSHARED_PLATFORM_UTILS_DATA_BUFFER_H_
#define NVSHARED_PLATFORM_UTILS_DATA_BUFFER_H_

#include <cstdint>
#include <map>

#include <boost/shared_ptr.hpp>

#include "nvshared/export.h"

namespace nv_ns {

class NVSHARED_API DataBuffer {
 public:
  // Empty: no array, size 0.
  DataBuffer() = default;
  // A zero-filled array of `size` bytes.
  explicit DataBuffer(std::uint64_t size);
  // A copy of `size` bytes at `data`.
  DataBuffer(const char* data, std::uint64_t size);
  ~DataBuffer();
  DataBuffer(const DataBuffer&) = delete;
  DataBuffer& operator=(const DataBuffer&) = delete;

  // The array (null when empty) and its size in bytes.
  char* m_pData = nullptr;
  std::uint64_t m_size = 0;
};

using dictionary = std::map<short, boost::shared_ptr<const DataBuffer>>;

}  // namespace nv_ns

#endif  // NVSHARED_PLATFORM_UTILS_DATA_BUFFER_H_
