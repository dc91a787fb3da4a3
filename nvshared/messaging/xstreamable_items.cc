// The item operations of a tagged object that are not templates: reading a
// scalar, strings, char arrays, vectors, nested objects and lists of
// objects. The frame they run in (header, binding, the checks and the
// messages) is in xstreamable.cc; the item grammar is in xstreamable.h.
#include "nvshared/messaging/xstreamable.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "nvshared/messaging/xstream_trace.h"

namespace nv_ns {
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
    // No room is checked for the tag and the length field: the nested
    // object's own header check speaks, with the room counted from the tag,
    // as the format's first writers did. Where that count would let the
    // nested object write past the buffer (room for its header but not for
    // the 3 bytes before it too), it is bound to the room that truly
    // remains after them instead, and so fails or fits within the buffer.
    const std::uint64_t room = m_bufferLength - offset;
    if (room < kHeaderLength) {
      if (room >= 1) Put8('I');
      nested.Attach(m_cursor, room, kWrite);  // raises: shorter than a header
    }
    Put8('I');
    char* length_field = m_cursor;
    nested.Attach(length_field + 2, room - 3, kWrite);
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
