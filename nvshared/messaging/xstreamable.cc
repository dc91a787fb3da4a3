// The frame of a tagged object: its header, binding to a buffer and
// release, whole-object writes and reads, the room checks and the exact
// failure messages. The item operations are in xstreamable_items.cc.
#include "nvshared/messaging/xstreamable.h"

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "nvshared/messaging/xstream_trace.h"

namespace nv_ns {
namespace {

// The messages leave the object name with "%0.*s" and precision 5, since a
// five-letter name has no terminator. The 0 flag means nothing to %s (and
// compilers warn about it), so "%.*s" prints the same text.
constexpr const char* kShortBufferText =
    "The Buffer length (%d bytes) is less than the header length (%d bytes). "
    "The object name is '%.*s'";
constexpr const char* kProtocolText =
    "Protocol version mismatch. Expected protocol version: '%d'. Protocol "
    "version found: '%d'";
constexpr const char* kNameText =
    "Object name mismatch. Serialized name is '%s'; the object name is '%.*s'";
constexpr const char* kShorterThanHeaderText =
    "The buffer length (%d bytes) is shorter than the length specified in the "
    "Object '%.*s' header (%d bytes).";
constexpr const char* kOverflowText =
    "Buffer Overflow when processing item #%d (%s) in object '%.*s'. Item "
    "needs %d bytes. Current offset %d. Buffer length %d bytes";
constexpr const char* kUnderflowText =
    "Buffer Underflow when processing item #%d (%s) in object '%.*s'. Item "
    "needs %d bytes. Current offset %d. Buffer length %d bytes";
constexpr const char* kTagText =
    "Tag mismatch when processing item #%d (%s) in object '%.*s'. Expected "
    "tag %02x (%c). Actual tag %02x (%c). Current offset %d.";
constexpr const char* kLengthText =
    "Item length mismatch when processing item #%d (%s) in object '%.*s'. "
    "Expected length %d. Actual length %d. Current offset %d.";

constexpr int kNamePrecision = static_cast<int>(XStreamable::kNameLength);

// The messages are formatted into 512 characters, as the format has always
// done; a longer text is cut.
[[noreturn]] __attribute__((format(printf, 1, 2))) void Raise(
    const char* format, ...) {
  char text[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  throw StreamingException(text);
}

char Printable(unsigned char c) { return std::isprint(c) ? c : '.'; }

std::uint32_t Load32(const char* p) {
  std::uint32_t v;
  std::memcpy(&v, p, 4);
  return v;
}

}  // namespace

XStreamable::XStreamable(const char (&name)[kNameLength], std::uint32_t version)
    : m_ownVersion(version) {
  m_header[0] = kProtocolVersion;
  m_header[1] = 0;
  m_header[2] = 0;
  std::memcpy(m_header + 3, &version, 4);
  std::memcpy(m_header + 7, name, kNameLength);
}

// The copy takes its name bytes from the source's image: the same class,
// so the same name up to its first NUL, which is all that readers compare.
XStreamable::XStreamable(const XStreamable& other)
    : m_ownVersion(other.m_ownVersion) {
  ResetState(other.m_header);
}

XStreamable& XStreamable::operator=(const XStreamable& other) {
  if (this != &other) ResetState(m_header);
  return *this;
}

void XStreamable::ResetState(const unsigned char* header) {
  unsigned char name[kNameLength];
  std::memcpy(name, header + 7, kNameLength);
  m_begin = m_cursor = nullptr;
  m_bufferLength = 0;
  m_itemNumber = 0;
  m_itemName = nullptr;
  m_direction = kIdle;
  m_header[0] = kProtocolVersion;
  m_header[1] = 0;
  m_header[2] = 0;
  std::memcpy(m_header + 3, &m_ownVersion, 4);
  std::memcpy(m_header + 7, name, kNameLength);
  m_streamVersion = 0;
  m_failed = 0;
}

std::uint64_t XStreamable::Attach(char* buffer, std::uint64_t length,
                                  std::int32_t direction) {
  m_direction = direction;
  if (direction != kWrite && direction != kRead) {
    // Nothing is bound: a transfer in this state reads or writes nothing.
    m_begin = m_cursor = nullptr;
    m_bufferLength = 0;
    return 0;
  }
  if (length < kHeaderLength) RaiseShortBuffer(length);
  if (direction == kRead) {
    const auto protocol = static_cast<unsigned char>(buffer[0]);
    if (protocol != kProtocolVersion) {
      m_failed = 1;
      Raise(kProtocolText, kProtocolVersion, protocol);
    }
    if (std::strncmp(GetObjectName(), buffer + 7, kNameLength) != 0) {
      // The serialized name is printed as a C string from the buffer: up to
      // its first NUL, which may lie beyond the five name bytes. It stops at
      // the end of the buffer rather than reading past it.
      const char* name = buffer + 7;
      const std::size_t shown = strnlen(name, length - 7);
      const std::string serialized(name, shown);
      m_failed = 1;
      Raise(kNameText, serialized.c_str(), kNamePrecision, GetObjectName());
    }
    std::uint16_t total;
    std::memcpy(&total, buffer + 1, 2);
    if (length < total) {
      m_failed = 1;
      Raise(kShorterThanHeaderText, static_cast<int>(length), kNamePrecision,
            GetObjectName(), static_cast<int>(total));
    }
    std::memcpy(m_header, buffer, kHeaderLength);
    m_streamVersion = Load32(buffer + 3);
    std::memcpy(m_header + 3, &m_ownVersion, 4);
    if (XStreamTrace* trace = XStreamTrace::Current()) {
      XStreamTraceEvent event;
      event.kind = XStreamTraceEvent::kObject;
      event.depth = trace->m_depth++;
      event.protocol = protocol;
      event.totalLength = total;
      event.version = m_streamVersion;
      event.objectName.assign(GetObjectName(),
                              strnlen(GetObjectName(), kNameLength));
      trace->Report(event);
    }
  } else {
    WriteHeaderTo(buffer);
  }
  m_begin = buffer;
  m_cursor = buffer + kHeaderLength;
  m_bufferLength = length;
  return kHeaderLength;
}

void XStreamable::Detach() {
  if (m_direction == kRead && m_begin != nullptr) {
    if (XStreamTrace* trace = XStreamTrace::Current()) --trace->m_depth;
  }
  m_begin = m_cursor = nullptr;
  m_bufferLength = 0;
  m_itemNumber = 0;
  m_itemName = nullptr;
  m_direction = kIdle;
}

void XStreamable::WriteHeaderTo(char* buffer) const {
  std::memcpy(buffer, m_header, kHeaderLength);
}

std::uint16_t XStreamable::PatchTotalLength() {
  const auto total = static_cast<std::uint16_t>(Offset());
  std::memcpy(m_begin + 1, &total, 2);
  return total;
}

namespace {

// Detaches on the way out, also when an exception passes, so that no
// binding to a caller's buffer outlives the call.
class DetachOnExit {
 public:
  explicit DetachOnExit(XStreamable& object) : m_object(object) {}
  ~DetachOnExit() { m_object.Detach(); }
  DetachOnExit(const DetachOnExit&) = delete;
  DetachOnExit& operator=(const DetachOnExit&) = delete;

 private:
  XStreamable& m_object;
};

}  // namespace

std::size_t XStreamable::WriteTo(char* buffer, std::size_t length) {
  DetachOnExit detach(*this);
  Attach(buffer, length, kWrite);
  Transfer();
  return PatchTotalLength();
}

std::size_t XStreamable::WriteToString(std::string& result) {
  char buffer[kStringBufferLength];
  const std::size_t total = WriteTo(buffer, sizeof buffer);
  if (total != 0) result.assign(buffer, total);
  return total;
}

std::size_t XStreamable::ReadFrom(const char* data, std::size_t length) {
  DetachOnExit detach(*this);
  // Reading never stores into the buffer.
  Attach(const_cast<char*>(data), length, kRead);
  Transfer();
  return TotalLength();
}

void XStreamable::RaiseTagMismatch(char expected_tag, char actual_tag) {
  const auto expected = static_cast<unsigned char>(expected_tag);
  const auto actual = static_cast<unsigned char>(actual_tag);
  m_failed = 1;
  Raise(kTagText, m_itemNumber, m_itemName ? m_itemName : "", kNamePrecision,
        GetObjectName(), expected, Printable(expected), actual,
        Printable(actual), static_cast<int>(Offset()));
}

void XStreamable::RaiseShortBuffer(std::uint64_t available) {
  m_failed = 1;
  Raise(kShortBufferText, static_cast<int>(available),
        static_cast<int>(kHeaderLength), kNamePrecision, GetObjectName());
}

void XStreamable::RaiseOverflow(std::uint64_t bytes) {
  m_failed = 1;
  Raise(kOverflowText, m_itemNumber, m_itemName ? m_itemName : "",
        kNamePrecision, GetObjectName(), static_cast<int>(bytes),
        static_cast<int>(Offset()), static_cast<int>(m_bufferLength));
}

void XStreamable::RaiseUnderflow(std::int64_t bytes, std::uint64_t offset,
                                 std::uint64_t length) {
  m_failed = 1;
  Raise(kUnderflowText, m_itemNumber, m_itemName ? m_itemName : "",
        kNamePrecision, GetObjectName(), static_cast<int>(bytes),
        static_cast<int>(offset), static_cast<int>(length));
}

void XStreamable::RaiseLengthMismatch(int expected, int actual,
                                      std::uint64_t offset) {
  m_failed = 1;
  Raise(kLengthText, m_itemNumber, m_itemName ? m_itemName : "", kNamePrecision,
        GetObjectName(), expected, actual, static_cast<int>(offset));
}

}  // namespace nv_ns
