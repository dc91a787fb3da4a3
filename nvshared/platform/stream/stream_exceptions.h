// The failures of the core stream. Every one derives from
// StreamExceptionBase, itself a std::runtime_error, so a caller can catch
// the stream's failures apart from everything else. The texts below are part
// of the stream's contract: callers and logs compare them whole.
#ifndef NVSHARED_PLATFORM_STREAM_STREAM_EXCEPTIONS_H_
#define NVSHARED_PLATFORM_STREAM_STREAM_EXCEPTIONS_H_

#include <cstddef>
#include <stdexcept>
#include <string>

#include "nvshared/export.h"

namespace dv_stream_ns {

class NVSHARED_API StreamExceptionBase : public std::runtime_error {
 public:
  explicit StreamExceptionBase(const std::string& text);
  ~StreamExceptionBase() override;
};

// Reading past the end of what the stream holds, or a bad start tag.
class NVSHARED_API StreamUnderflow : public StreamExceptionBase {
 public:
  explicit StreamUnderflow(const std::string& text);
  ~StreamUnderflow() override;
};

// Writing more than the stream can take.
class NVSHARED_API StreamOverflow : public StreamExceptionBase {
 public:
  explicit StreamOverflow(const std::string& text);
  ~StreamOverflow() override;
};

// A scalar lies past the end.
inline constexpr char kScalarUnderflowText[] =
    "ReadFromStream - unable to retrieve data";
// A run of bytes (a string's characters) lies past the end.
inline constexpr char kBytesUnderflowText[] =
    "ReadFromStream - unable to retrieve multiple data";
// A variable-length integer runs past the end of a flat buffer.
inline constexpr char kFlatVarIntUnderflowText[] =
    "StreamBufferReader<FastStreamBuffer>::ReadNext - unable to retrieve data";
// The same on a paged reader. This build has the flat back end only, so
// nothing raises it; the text is kept for hosts that match on it.
inline constexpr char kPagedVarIntUnderflowText[] =
    "StreamBufferReader<cDVMDataStreamingReader>::ReadNext - unable to "
    "retrieve data";
// The 4 bytes read for a pending start tag do not begin with "VIA".
inline constexpr char kStartTagMissingText[] = "VIA TAG is missing";
// The pending start tag could not be written.
inline constexpr char kStartTagWriteText[] =
    "FastStreamBuffer::Write failed while writing flags";
// A stream with neither a flat buffer nor a Protocol was asked to transfer.
inline constexpr char kNoBackEndText[] =
    "Stream has neither a FastStreamBuffer nor a Protocol";

// "Attempt to write <bytes> bytes to FastStreamBuffer failed; capacity=
// <capacity> pos=<position>": a flat buffer that may not grow lacks room.
NVSHARED_API std::string FlatOverflowText(std::size_t bytes,
                                          std::size_t capacity,
                                          std::size_t position);
// "Attempt to write <bytes> bytes to DVMDataStreamingWriter failed": the
// paged writer's refusal, kept for the same reason as the paged reader's.
NVSHARED_API std::string PagedOverflowText(std::size_t bytes);

}  // namespace dv_stream_ns

#endif  // NVSHARED_PLATFORM_STREAM_STREAM_EXCEPTIONS_H_
