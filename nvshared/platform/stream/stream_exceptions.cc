#include "nvshared/platform/stream/stream_exceptions.h"

namespace dv_stream_ns {

StreamExceptionBase::StreamExceptionBase(const std::string& text)
    : std::runtime_error(text) {}
StreamExceptionBase::~StreamExceptionBase() = default;

StreamUnderflow::StreamUnderflow(const std::string& text)
    : StreamExceptionBase(text) {}
StreamUnderflow::~StreamUnderflow() = default;

StreamOverflow::StreamOverflow(const std::string& text)
    : StreamExceptionBase(text) {}
StreamOverflow::~StreamOverflow() = default;

std::string FlatOverflowText(std::size_t bytes, std::size_t capacity,
                             std::size_t position) {
  return "Attempt to write " + std::to_string(bytes) +
         " bytes to FastStreamBuffer failed; capacity=" +
         std::to_string(capacity) + " pos=" + std::to_string(position);
}

std::string PagedOverflowText(std::size_t bytes) {
  return "Attempt to write " + std::to_string(bytes) +
         " bytes to DVMDataStreamingWriter failed";
}

}  // namespace dv_stream_ns
