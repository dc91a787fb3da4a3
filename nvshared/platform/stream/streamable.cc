#include "nvshared/platform/stream/streamable.h"

#include "nvshared/platform/stream/stream_exceptions.h"

namespace dv_stream_ns {

Streamable::~Streamable() = default;

Stream& Streamable::Transfer(Stream& stream, Direction /*direction*/) {
  return stream;
}

bool Streamable::MultiPartTransfer(Stream& /*stream*/,
                                   MultiPartTransferState*& /*state*/) {
  return false;
}

VerClsId Streamable::Id() const { return {}; }

void Streamable::WireReadReset() {}

void Streamable::Extract(FasterWireStreamBase& /*stream*/) {
  throw StreamExceptionBase(kNoFasterWireFormText);
}

void Streamable::Insert(FasterWireStreamBase& /*stream*/) const {
  throw StreamExceptionBase(kNoFasterWireFormText);
}

}  // namespace dv_stream_ns
