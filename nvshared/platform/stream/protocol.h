// dv_stream_ns::Protocol: the general back end of a Stream, for streams
// without a flat buffer. It sees every member by name, so that a textual or
// other protocol can stand behind a stream; the names that messages pass to
// Stream are therefore part of their format.
//
// A Protocol reports its own failures by throwing; a Stream passes them on
// untouched. Threads: as its stream, one at a time.
#ifndef NVSHARED_PLATFORM_STREAM_PROTOCOL_H_
#define NVSHARED_PLATFORM_STREAM_PROTOCOL_H_

#include <cstddef>
#include <string>

#include "nvshared/export.h"

namespace dv_stream_ns {

class NVSHARED_API Protocol {
 public:
  virtual ~Protocol();

  // One scalar member: its name, the run-time name of its type
  // (typeid(T).name()), whether the type is signed, and its `size` bytes at
  // `address`, in memory order. A bool is passed as a bool.
  virtual void WriteScalar(const char* name, const char* typeName,
                           bool isSigned, std::size_t size,
                           const void* address) = 0;
  // Fills the `size` bytes at `address`. A bool must receive true or false.
  virtual void ReadScalar(const char* name, const char* typeName, bool isSigned,
                          std::size_t size, void* address) = 0;

  // One string member, by name.
  virtual void WriteString(const char* name, const std::string& value) = 0;
  // Fills `value` and sets `length` to its byte length.
  virtual void ReadString(const char* name, std::string& value,
                          std::size_t& length) = 0;
};

}  // namespace dv_stream_ns

#endif  // NVSHARED_PLATFORM_STREAM_PROTOCOL_H_
