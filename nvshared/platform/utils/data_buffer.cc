#include "nvshared/platform/utils/data_buffer.h"

#include <cstring>

namespace nv_ns {

DataBuffer::DataBuffer(std::uint64_t size)
    : m_pData(size == 0 ? nullptr : new char[size]()), m_size(size) {}

DataBuffer::DataBuffer(const char* data, std::uint64_t size)
    : DataBuffer(size) {
  if (size != 0) std::memcpy(m_pData, data, size);
}

DataBuffer::~DataBuffer() { delete[] m_pData; }

}  // namespace nv_ns
