// dv_stream_ns::Streamable: the base of every class that travels over the
// core stream, and VerClsId, the class identity a Streamable reports. The
// stream's factory mechanism (via_factory.h) carries the class id, so the
// bytes of a Streamable carry no header of their own.
//
// A derived class's Transfer calls its base's Transfer first and then moves
// its own members in a fixed order, under their member names, in both
// directions with one walk (Stream::Transfer). Threads: an instance belongs
// to one thread at a time.
#ifndef NVSHARED_PLATFORM_STREAM_STREAMABLE_H_
#define NVSHARED_PLATFORM_STREAM_STREAMABLE_H_

#include <string>

#include "nvshared/export.h"
#include "nvshared/platform/stream/stream.h"

namespace dv_stream_ns {

// State of a transfer done in several parts, and the faster wire form.
// Neither has a back end in this library; they appear only in the
// signatures that derived classes override.
class MultiPartTransferState;
class FasterWireStreamBase;

// A class's identity: its id and its name. Two identities are equal when
// both are.
struct NVSHARED_API VerClsId {
  unsigned short classId = 0;
  std::string name;

  bool operator==(const VerClsId& other) const = default;
};

class NVSHARED_API Streamable {
 public:
  // Any non-zero direction writes.
  enum Direction { eRead = 0, eWrite = 1 };

  Streamable() = default;
  Streamable(const Streamable&) = default;
  Streamable& operator=(const Streamable&) = default;

  virtual ~Streamable();

  // Moves the members to (direction non-zero) or from the stream and
  // returns it. The base has no members and transfers nothing.
  virtual Stream& Transfer(Stream& stream, Direction direction);

  // Transfers one part of an object too large to move at once, keeping its
  // progress in `state`. The base has a single part, which Transfer moves:
  // it returns false (no part was transferred here) and leaves `state`
  // alone.
  virtual bool MultiPartTransfer(Stream& stream,
                                 MultiPartTransferState*& state);

  // The class's identity. The base answers id 0 and an empty name, which
  // no registered class uses.
  virtual VerClsId Id() const;

  // Drops whatever a class caches from its last read. The base caches
  // nothing and does nothing.
  virtual void WireReadReset();

  // The faster wire form. The base has none: both throw StreamExceptionBase
  // naming the operation, so that no member is silently lost.
  virtual void Extract(FasterWireStreamBase& stream);
  virtual void Insert(FasterWireStreamBase& stream) const;
};

// Thrown by the base Extract and Insert.
inline constexpr char kNoFasterWireFormText[] =
    "Streamable has no faster wire form";

}  // namespace dv_stream_ns

#endif  // NVSHARED_PLATFORM_STREAM_STREAMABLE_H_
