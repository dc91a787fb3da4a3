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

// ---------------------------------------------------------------------------
// Reading, and the items that are not templates.

namespace {

void ReportItem(XStreamTrace* trace, std::uint16_t number, const char* name,
                char tag, std::string value) {
  XStreamTraceEvent event;
  event.kind = XStreamTraceEvent::kItem;
  event.depth = trace->m_depth - 1;
  event.itemNumber = number;
  event.itemName = name ? name : "";
  event.tag = tag;
  event.value = std::move(value);
  trace->Report(event);
}

}  // namespace

bool XStreamable::ReadScalar(void* value, std::uint8_t width, ScalarKind kind) {
  if (!CheckRead(2 + width)) return false;
  ExpectTag('T');
  ExpectWidth(width);
  std::memcpy(value, m_cursor, width);
  m_cursor += width;
  if (XStreamTrace* trace = XStreamTrace::Current()) {
    std::string text;
    std::uint64_t bits = 0;
    std::memcpy(&bits, value, width);
    switch (kind) {
      case ScalarKind::kBool:
        text = bits != 0 ? "true" : "false";
        break;
      case ScalarKind::kChar:
        text = QuoteBytes(static_cast<const char*>(value), 1);
        break;
      case ScalarKind::kFloat: {
        char number[32];
        if (width == 8) {
          double d;
          std::memcpy(&d, value, 8);
          std::snprintf(number, sizeof number, "%.17g", d);
        } else {
          float f;
          std::memcpy(&f, value, 4);
          std::snprintf(number, sizeof number, "%.9g", static_cast<double>(f));
        }
        text = number;
        break;
      }
      case ScalarKind::kSigned: {
        const int shift = 64 - 8 * width;
        const auto signed_value =
            static_cast<std::int64_t>(bits << shift) >> shift;
        text = std::to_string(signed_value);
        break;
      }
      case ScalarKind::kUnsigned:
        text = std::to_string(bits);
        break;
    }
    ReportItem(trace, m_itemNumber, m_itemName, 'T', std::move(text));
  }
  return true;
}

void XStreamable::TransferString(const char* name, std::string& value) {
  m_itemName = name;
  if (m_failed) return;
  if (m_direction == kWrite) {
    const std::size_t n = value.size();
    CheckWrite(n + 4);
    Put8('S');
    Put16(static_cast<std::uint16_t>(n + 1));
    Put8(1);
    std::memcpy(m_cursor, value.data(), n);
    m_cursor += n;
  } else {
    if (!CheckRead(4)) return;
    ExpectTag('S');
    const std::int64_t n = static_cast<std::int64_t>(Get16()) - 1;
    ExpectWidth(1);
    // The gate would let an older writer's object end here even though the
    // count promises characters; those would lie beyond the object, so the
    // read is refused as a short buffer instead of reading past it.
    if (!CheckRead(n) && n > 0) RaiseUnderflow(n, Offset(), TotalLength());
    if (n < 0) {
      // A count of 0 asks for -1 characters, which the string assignment
      // has always refused with this text. It is raised as the format's own
      // exception, so that a caller catching StreamingException sees every
      // malformed buffer.
      m_failed = 1;
      throw StreamingException("string too long");
    }
    value.assign(m_cursor, static_cast<std::size_t>(n));
    m_cursor += n;
    if (XStreamTrace* trace = XStreamTrace::Current()) {
      ReportItem(trace, m_itemNumber, m_itemName, 'S',
                 QuoteBytes(value.data(), value.size()));
    }
  }
  ++m_itemNumber;
}

void XStreamable::TransferCharArray(const char* name, char* field,
                                    std::size_t capacity) {
  m_itemName = name;
  if (m_failed) return;
  if (m_direction == kWrite) {
    const std::size_t n = strnlen(field, capacity);
    CheckWrite(n + 4);
    Put8('C');
    Put16(static_cast<std::uint16_t>(n + 1));
    Put8(1);
    std::memcpy(m_cursor, field, n);
    m_cursor += n;
    return;
  }
  if (!CheckRead(4)) return;
  ExpectTag('C');
  // In 16 bits: a count of 0 asks for 65535 characters.
  const auto n = static_cast<std::uint16_t>(Get16() - 1);
  ExpectWidth(1);
  // As for strings: characters promised past the end of an older writer's
  // object are refused rather than read.
  if (!CheckRead(n) && n > 0) RaiseUnderflow(n, Offset(), TotalLength());
  if (n > capacity) {
    RaiseLengthMismatch(static_cast<int>(capacity), n, Offset());
  }
  std::memcpy(field, m_cursor, n);
  if (n < capacity) std::memset(field + n, 0, capacity - n);
  m_cursor += n;
  if (XStreamTrace* trace = XStreamTrace::Current()) {
    ReportItem(trace, m_itemNumber, m_itemName, 'C',
               QuoteBytes(field, strnlen(field, n)));
  }
}

std::int64_t XStreamable::BeginReadIntVector() {
  if (!CheckRead(4)) return -1;
  ExpectTag('V');
  const std::uint16_t count = Get16();
  ExpectWidth(4);
  const std::int64_t n = (static_cast<std::int64_t>(count) - 1) / 4;
  // As for strings: values promised past the end of an older writer's
  // object are refused rather than read. (A count of 0 rounds to no
  // values.)
  if (!CheckRead(4 * n) && n > 0) {
    RaiseUnderflow(4 * n, Offset(), TotalLength());
  }
  return n;
}

void XStreamable::EndReadIntVector(const void* values, std::size_t n) {
  m_cursor += 4 * n;
  if (XStreamTrace* trace = XStreamTrace::Current()) {
    std::string text = "[";
    for (std::size_t i = 0; i < n; ++i) {
      std::int32_t v;
      std::memcpy(&v, static_cast<const char*>(values) + 4 * i, 4);
      if (i != 0) text += ", ";
      text += std::to_string(v);
    }
    text += ']';
    ReportItem(trace, m_itemNumber, m_itemName, 'V', std::move(text));
  }
}

void XStreamable::TransferStringVector(const char* name,
                                       std::vector<std::string>& values) {
  m_itemName = name;
  if (m_failed) return;
  if (m_direction == kWrite) {
    // A fixed figure, whatever the vector holds: the format has always
    // checked for 34 bytes here, so a short buffer fails even for an empty
    // vector. Each string checks its own room.
    CheckWrite(34);
    Put8('V');
    Put16(static_cast<std::uint16_t>(values.size()));
    for (std::string& value : values) TransferString(name, value);
  } else {
    if (!CheckRead(3)) return;
    ExpectTag('V');
    const std::uint16_t n = Get16();
    if (XStreamTrace* trace = XStreamTrace::Current()) {
      ReportItem(trace, static_cast<std::uint16_t>(m_itemNumber + n),
                 m_itemName, 'V', std::to_string(n) + " strings");
    }
    values.clear();
    // Every string takes at least 4 bytes.
    values.reserve(std::min<std::uint64_t>(
        n, (m_bufferLength - std::min(m_bufferLength, Offset())) / 4));
    for (std::uint16_t i = 0; i < n; ++i) {
      std::string value;
      TransferString(name, value);
      values.push_back(std::move(value));
    }
  }
  ++m_itemNumber;
}

void XStreamable::TransferObject(const char* name, XStreamable& nested) {
  m_itemName = name;
  if (m_failed) return;
  const std::uint64_t offset = Offset();
  if (m_direction == kWrite) {
    // The tag and the length field are checked first, and the nested object
    // is given the room that remains after them. (The format's first
    // writers checked nothing here and gave the nested object 3 bytes more
    // than there were.)
    CheckWrite(3);
    Put8('I');
    char* length_field = m_cursor;
    nested.Attach(length_field + 2, m_bufferLength - offset - 3, kWrite);
    nested.Transfer();
    const std::uint16_t length = nested.PatchTotalLength();
    nested.Detach();
    std::memcpy(length_field, &length, 2);
    m_cursor = length_field + 2 + length;
  } else {
    if (m_begin == nullptr) return;
    const std::uint16_t total = TotalLength();
    // Only the first half of the gate applies here.
    if (offset == total && m_streamVersion < m_ownVersion) return;
    // The tag and the length must lie inside the object, and the nested
    // object inside the buffer after them. (The format's first readers
    // checked neither the 3 bytes nor their place in the buffer.)
    if (offset + 3 > total) RaiseUnderflow(3, offset, total);
    ExpectTag('I');
    const std::uint16_t length = Get16();
    if (m_bufferLength - offset - 3 < length) {
      RaiseUnderflow(length, offset, m_bufferLength);
    }
    if (XStreamTrace* trace = XStreamTrace::Current()) {
      ReportItem(trace, m_itemNumber, m_itemName, 'I',
                 std::to_string(length) + " bytes");
    }
    nested.Attach(m_cursor, length, kRead);
    nested.Transfer();
    nested.Detach();
    m_cursor += length;
  }
  ++m_itemNumber;
}

void XStreamable::BeginWriteObjectVector(std::size_t n, char*& span) {
  CheckWrite(5);
  Put8('E');
  span = m_cursor;
  Put16(0);
  Put16(static_cast<std::uint16_t>(n));
}

void XStreamable::WriteElement(XStreamable& element) {
  const std::uint64_t available = m_bufferLength - Offset();
  if (available < kHeaderLength) element.RaiseShortBuffer(available);
  element.Attach(m_cursor, available, kWrite);
  element.Transfer();
  const std::uint16_t length = element.PatchTotalLength();
  element.Detach();
  m_cursor += length;
}

void XStreamable::EndWriteObjectVector(char* span) {
  const auto value = static_cast<std::uint16_t>(m_cursor - span);
  std::memcpy(span, &value, 2);
}

std::int64_t XStreamable::BeginReadObjectVector(std::uint64_t& remaining) {
  if (!CheckRead(5)) return -1;
  ExpectTag('E');
  remaining = Get16();
  const std::uint16_t n = Get16();
  if (XStreamTrace* trace = XStreamTrace::Current()) {
    ReportItem(
        trace, m_itemNumber, m_itemName, 'E',
        std::to_string(n) + " objects, span " + std::to_string(remaining));
  }
  return n;
}

void XStreamable::ReadElement(XStreamable& element, std::uint64_t& remaining) {
  // Each element is offered what remains of the span, which counts the 4
  // bytes of the span and count fields too, but never more than remains of
  // the buffer. (The format's first readers trusted the span alone.)
  const std::uint64_t available =
      std::min(remaining, m_bufferLength - std::min(m_bufferLength, Offset()));
  element.Attach(m_cursor, available, kRead);
  element.Transfer();
  element.Detach();
  const std::uint16_t length = element.TotalLength();
  remaining -= length;
  m_cursor += length;
}

void XStreamable::EndItem() { ++m_itemNumber; }

}  // namespace nv_ns
