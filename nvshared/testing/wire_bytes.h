// The bytes a record or a message writes, for comparing with hand-built
// golden vectors: XStreamBytes for the tagged object format, StreamBytes for
// a message on the core stream. Each call uses its own buffer; no state is
// shared between threads.
#ifndef NVSHARED_TESTING_WIRE_BYTES_H_
#define NVSHARED_TESTING_WIRE_BYTES_H_

#include <string>

#include "nvshared/messaging/xstreamable.h"
#include "nvshared/platform/stream/fast_stream_buffer.h"
#include "nvshared/platform/stream/stream.h"
#include "nvshared/platform/stream/streamable.h"

namespace nvshared::testing {

// Writes the object itself (its item count and state stay readable after),
// or a temporary.
template <typename T>
std::string XStreamBytes(T&& object) {
  std::string out;
  object.WriteToString(out);
  return out;
}

// `direction` is passed as given, so that callers can try the odd ones.
inline std::string StreamBytes(
    dv_stream_ns::Streamable& message,
    int direction = dv_stream_ns::Streamable::eWrite) {
  dv_stream_ns::FastStreamBuffer buffer;
  dv_stream_ns::Stream stream(&buffer);
  message.Transfer(stream,
                   static_cast<dv_stream_ns::Streamable::Direction>(direction));
  return std::string(buffer.data(), buffer.write_position());
}

}  // namespace nvshared::testing

#endif  // NVSHARED_TESTING_WIRE_BYTES_H_
