#include "nvshared/platform/stream/stream.h"

#include <bit>
#include <limits>

#include "nvshared/platform/stream/stream_exceptions.h"
#include "nvshared/platform/stream/var_int.h"

namespace dv_stream_ns {

// Scalars go in memory order, which is the wire's little-endian order only
// on a little-endian machine.
static_assert(std::endian::native == std::endian::little,
              "the core stream writes scalars in memory order");

Protocol::~Protocol() = default;

void Stream::ThrowScalarUnderflow() {
  throw StreamUnderflow(kScalarUnderflowText);
}

Protocol* Stream::ToProto(const char* /*name*/) {
  if (proto_ == nullptr) throw StreamExceptionBase(kNoBackEndText);
  write_tag_pending_ = false;
  read_tag_pending_ = false;
  return proto_;
}

void Stream::WriteStartTag() {
  const unsigned char tag[kStartTagSize] = {'V', 'I', 'A', write_tag_flags_};
  try {
    buffer_->Write(tag, sizeof tag);
  } catch (const StreamOverflow&) {
    throw StreamOverflow(kStartTagWriteText);
  }
  write_tag_pending_ = false;
}

// A tag cut short by the end of the buffer is a run of bytes that cannot be
// read, and fails as such; 4 bytes that are there but do not begin with
// "VIA" fail as a missing tag. Either way nothing is consumed and the mark
// stays, so the caller sees the same failure again if it retries.
void Stream::ReadStartTag() {
  unsigned char tag[kStartTagSize];
  const std::size_t start = buffer_->read_position();
  if (!buffer_->Read(tag, sizeof tag)) {
    throw StreamUnderflow(kBytesUnderflowText);
  }
  if (tag[0] != 'V' || tag[1] != 'I' || tag[2] != 'A') {
    buffer_->set_read_position(start);
    throw StreamUnderflow(kStartTagMissingText);
  }
  read_tag_flags_ = tag[3];
  read_tag_pending_ = false;
}

void Stream::Write(const char* name, const std::string& value) {
  if (buffer_ == nullptr) {
    ToProto(name)->WriteString(name, value);
    return;
  }
  WriteStringBytes(name, value.data(), value.size());
}

void Stream::WriteStringBytes(const char* name, const char* data,
                              std::size_t size) {
  if (buffer_ == nullptr) {
    ToProto(name)->WriteString(name, std::string(data, size));
    return;
  }
  if (write_tag_pending_) WriteStartTag();
  if (size > std::numeric_limits<std::uint32_t>::max()) {
    // The length prefix holds 32 bits; a longer string can't be framed.
    throw StreamOverflow(
        FlatOverflowText(size, buffer_->capacity(), buffer_->write_position()));
  }
  unsigned char prefix[kMaxVarIntBytes];
  const std::size_t prefixSize =
      EncodeVarInt(static_cast<std::uint32_t>(size), prefix);
  // One reservation for the whole item, so a failure writes nothing.
  buffer_->Reserve(prefixSize + size);
  buffer_->Write(prefix, prefixSize);
  buffer_->Write(data, size);
}

void Stream::Read(const char* name, std::string& value) {
  if (buffer_ == nullptr) {
    std::size_t length = 0;
    ToProto(name)->ReadString(name, value, length);
    return;
  }
  if (read_tag_pending_) ReadStartTag();
  const std::size_t start = buffer_->read_position();
  const std::uint32_t length = ReadVarInt(name);
  if (length > buffer_->readable()) {
    buffer_->set_read_position(start);
    throw StreamUnderflow(kBytesUnderflowText);
  }
  value.assign(buffer_->data() + buffer_->read_position(), length);
  buffer_->set_read_position(buffer_->read_position() + length);
}

void Stream::WriteVarInt(const char* name, std::uint32_t value) {
  if (buffer_ == nullptr) {
    ToProto(name)->WriteScalar(name, typeid(value).name(), false, sizeof value,
                               &value);
    return;
  }
  if (write_tag_pending_) WriteStartTag();
  unsigned char bytes[kMaxVarIntBytes];
  buffer_->Write(bytes, EncodeVarInt(value, bytes));
}

std::uint32_t Stream::ReadVarInt(const char* name) {
  std::uint32_t value = 0;
  if (buffer_ == nullptr) {
    ToProto(name)->ReadScalar(name, typeid(value).name(), false, sizeof value,
                              &value);
    return value;
  }
  if (read_tag_pending_) ReadStartTag();
  const auto* at = reinterpret_cast<const unsigned char*>(buffer_->data()) +
                   buffer_->read_position();
  const std::size_t used = DecodeVarInt(at, buffer_->readable(), value);
  if (used == 0) throw StreamUnderflow(kFlatVarIntUnderflowText);
  buffer_->set_read_position(buffer_->read_position() + used);
  return value;
}

}  // namespace dv_stream_ns
