// nv_ns::XStreamable, the base of every record that the library moves as
// bytes in the tagged object format, and nv_ns::StreamingException, which
// every failure of that format raises.
//
// An object is 12 bytes of header followed by its items:
//
//   object := protocol:u8(=1) total:u16 version:u32 name:char[5] item*
//   item   := 'T' width:u8 value[width]                 scalar (1,2,4,8)
//           | 'S' count:u16 width:u8(=1) char[count-1]  string
//           | 'C' count:u16 width:u8(=1) char[count-1]  fixed char array
//           | 'V' count:u16 width:u8(=4) u32[(count-1)/4] vector of 32-bit
//           | 'V' n:u16 ('S' item){n}                   vector of strings
//           | 'E' span:u16 n:u16 object{n}              vector of objects
//           | 'I' length:u16 object                     one nested object
//
// Integers are little-endian and unaligned; `total` counts the whole object,
// header included; `span` counts from its own first byte to the item's end.
// Items have no names on the wire: their order in Transfer() is their
// identity. A reader accepts a buffer from an older writer that ends on an
// item boundary (the items it lacks keep their values) and skips what a newer
// writer added; docs/formats/tagged-object.md has the whole story.
//
// The object never owns the buffer it is attached to. Its stream state is not
// protected: one thread at a time transfers an object. Once a transfer has
// failed, the object skips every item for the rest of its life.
#ifndef NVSHARED_MESSAGING_XSTREAMABLE_H_
#define NVSHARED_MESSAGING_XSTREAMABLE_H_

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "nvshared/export.h"

namespace nv_ns {

// Raised by every failure of the tagged object format; what() is the
// formatted message.
class NVSHARED_API StreamingException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class NVSHARED_API XStreamable {
 public:
  static constexpr std::uint32_t kHeaderLength = 12;
  static constexpr std::uint8_t kProtocolVersion = 1;
  static constexpr std::size_t kNameLength = 5;
  // The buffer of WriteToString, header included.
  static constexpr std::size_t kStringBufferLength = 32768;

  enum Direction : std::int32_t { kIdle = 0, kWrite = 1, kRead = 2 };

  // The record's own item walk, for both directions.
  virtual void Transfer() = 0;
  // The bytes the items take on the wire, without the header (an upper
  // bound for records that hold vectors of objects).
  virtual std::uint64_t Measure() const = 0;

  // Binds the object to `buffer` for writing (1) or reading (2) and returns
  // the header length, 12; any other direction binds nothing and returns 0,
  // but is stored. Writing copies the header image into the buffer. Reading
  // checks the header: the length, the protocol version, the name (up to its
  // first NUL) and the total length, in that order. Raises
  // StreamingException.
  std::uint64_t Attach(char* buffer, std::uint64_t length,
                       std::int32_t direction);
  // Forgets the binding, the item number and name, and the direction. The
  // header image, the versions and the failed flag stay.
  void Detach();

  // Writes the whole object into `buffer` and returns its total length.
  // Raises StreamingException when it does not fit.
  std::size_t WriteTo(char* buffer, std::size_t length);
  // Writes the whole object through a 32768-byte buffer and assigns it to
  // `result`; returns the total length. A longer object raises the Buffer
  // Overflow message and leaves `result` alone.
  std::size_t WriteToString(std::string& result);
  // Reads the object from `data` and returns its total length, which may be
  // less than `length`: the caller moves on by it. Members read before a
  // failure keep what they read; the caller is to discard the object.
  std::size_t ReadFrom(const char* data, std::size_t length);

  bool HasFailed() const { return m_failed != 0; }
  std::int32_t GetDirection() const { return m_direction; }
  std::uint16_t GetItemNumber() const { return m_itemNumber; }
  // The name of the item being worked on or last worked on; null before the
  // first item.
  const char* GetItemName() const { return m_itemName; }
  std::uint32_t GetOwnVersion() const { return m_ownVersion; }
  // The version found in the buffer being read; 0 before a read.
  std::uint32_t GetStreamVersion() const { return m_streamVersion; }
  // The header as it would be written, or as it was read.
  const unsigned char* GetHeaderImage() const { return m_header; }
  // The five name bytes of the header image (no terminator).
  const char* GetObjectName() const {
    return reinterpret_cast<const char*>(m_header + 7);
  }

 protected:
  // `name` is the five name bytes as the header carries them, e.g. {'C', 'K',
  // 0, 0, 0}. Short names are padded in the caller's array, never by reading
  // past a literal.
  XStreamable(const char (&name)[kNameLength], std::uint32_t version);
  // Copying a record never copies its binding: both build a fresh idle
  // state (fresh header image, failed flag clear) for the target.
  XStreamable(const XStreamable& other);
  XStreamable& operator=(const XStreamable& other);
  // Records are never deleted through the base, so it needs no virtual
  // destructor; protected to make that impossible.
  ~XStreamable() = default;

  bool IsWriting() const { return m_direction == kWrite; }

  // The item operations. Each stores the item's name, does nothing more once
  // the object has failed, transfers the item and counts it. In reading, an
  // item that an older writer did not have is skipped, uncounted, and the
  // member keeps its value; the scalar form returns false then.
  template <typename T>
  bool TransferScalar(const char* name, T& value);
  void TransferString(const char* name, std::string& value);
  // The one item that does not count itself: the caller calls CountItem()
  // after it, in both directions, whatever became of the read. A field that
  // fills its capacity has no terminator.
  void TransferCharArray(const char* name, char* field, std::size_t capacity);
  template <typename T>
  void TransferIntVector(const char* name, std::vector<T>& values);
  void TransferStringVector(const char* name, std::vector<std::string>& values);
  void TransferObject(const char* name, XStreamable& nested);
  // T derives from XStreamable and is default-constructible and copyable.
  template <typename T>
  void TransferObjectVector(const char* name, std::vector<T>& elements);

  void CountItem() { ++m_itemNumber; }

  // What the item operations are built of, for records with unusual items.
  // CheckWrite raises the Buffer Overflow message when `bytes` more would
  // not fit. CheckRead is the version gate: false when the object ends here
  // and its writer was older than this code; the Buffer Underflow message
  // when fewer than `bytes` remain. ExpectTag and ExpectWidth consume one
  // byte and raise the mismatch messages.
  void CheckWrite(std::uint64_t bytes);
  bool CheckRead(std::int64_t bytes);
  void ExpectTag(char tag);
  void ExpectWidth(int width);

 private:
  enum class ScalarKind : std::uint8_t {
    kBool,
    kChar,
    kSigned,
    kUnsigned,
    kFloat
  };
  template <typename T>
  static constexpr ScalarKind KindOf();

  void WriteHeaderTo(char* buffer) const;
  void ResetState(const unsigned char* header);
  std::uint64_t Offset() const {
    return static_cast<std::uint64_t>(m_cursor - m_begin);
  }
  void Put8(std::uint8_t v) { *m_cursor++ = static_cast<char>(v); }
  void Put16(std::uint16_t v) {
    std::memcpy(m_cursor, &v, 2);
    m_cursor += 2;
  }
  std::uint16_t Get16() {
    std::uint16_t v;
    std::memcpy(&v, m_cursor, 2);
    m_cursor += 2;
    return v;
  }
  std::uint16_t TotalLength() const {
    std::uint16_t v;
    std::memcpy(&v, m_header + 1, 2);
    return v;
  }
  // Stores (cursor - begin), cut to 16 bits, as the total length in the
  // buffer, and returns it.
  std::uint16_t PatchTotalLength();
  // Reads a pending scalar of `width` bytes into `value`.
  bool ReadScalar(void* value, std::uint8_t width, ScalarKind kind);
  // Reads the header of a vector of 32-bit values and returns n, or -1 when
  // the gate skips the item.
  std::int64_t BeginReadIntVector();
  void EndReadIntVector(const void* values, std::size_t n);
  // The object vector's steps around each element.
  void BeginWriteObjectVector(std::size_t n, char*& span);
  void WriteElement(XStreamable& element);
  void EndWriteObjectVector(char* span);
  std::int64_t BeginReadObjectVector(std::uint64_t& remaining);
  void ReadElement(XStreamable& element, std::uint64_t& remaining);
  void EndItem();

  [[noreturn]] void RaiseShortBuffer(std::uint64_t available);
  [[noreturn]] void RaiseOverflow(std::uint64_t bytes);
  [[noreturn]] void RaiseUnderflow(std::int64_t bytes, std::uint64_t offset,
                                   std::uint64_t length);
  [[noreturn]] void RaiseLengthMismatch(int expected, int actual,
                                        std::uint64_t offset);

  // The stream state, in the order the format defines it.
  char* m_begin = nullptr;
  char* m_cursor = nullptr;
  std::uint64_t m_bufferLength = 0;
  std::uint16_t m_itemNumber = 0;
  const char* m_itemName = nullptr;
  std::int32_t m_direction = kIdle;
  unsigned char m_header[kHeaderLength];
  std::uint32_t m_ownVersion;
  std::uint32_t m_streamVersion = 0;
  std::uint8_t m_failed = 0;
};

// ---------------------------------------------------------------------------
// Templates.

static_assert(std::endian::native == std::endian::little,
              "the tagged object format stores values as they stand in a "
              "little-endian memory");

template <typename T>
constexpr XStreamable::ScalarKind XStreamable::KindOf() {
  if constexpr (std::is_same_v<T, bool>) {
    return ScalarKind::kBool;
  } else if constexpr (std::is_same_v<T, char>) {
    return ScalarKind::kChar;
  } else if constexpr (std::is_floating_point_v<T>) {
    return ScalarKind::kFloat;
  } else if constexpr (std::is_enum_v<T>) {
    return std::is_signed_v<std::underlying_type_t<T>> ? ScalarKind::kSigned
                                                       : ScalarKind::kUnsigned;
  } else {
    return std::is_signed_v<T> ? ScalarKind::kSigned : ScalarKind::kUnsigned;
  }
}

// The width is the member's size: 1 for bool and char, 2 for shorts, 4 for
// int and enumerations, 8 for doubles and 64-bit integers. A value written
// with one width is never widened into another. (A `long` is 64 bits on this
// platform; records whose wire field is a 32-bit long go through a 32-bit
// local.)
template <typename T>
bool XStreamable::TransferScalar(const char* name, T& value) {
  static_assert(std::is_arithmetic_v<T> || std::is_enum_v<T>);
  static_assert(sizeof(T) == 1 || sizeof(T) == 2 || sizeof(T) == 4 ||
                sizeof(T) == 8);
  constexpr std::uint8_t kWidth = sizeof(T);
  m_itemName = name;
  if (m_failed) return false;
  if (m_direction == kWrite) {
    CheckWrite(2 + kWidth);
    Put8('T');
    Put8(kWidth);
    std::memcpy(m_cursor, &value, kWidth);
    m_cursor += kWidth;
  } else if (!ReadScalar(&value, kWidth, KindOf<T>())) {
    return false;
  }
  ++m_itemNumber;
  return true;
}

template <typename T>
void XStreamable::TransferIntVector(const char* name, std::vector<T>& values) {
  static_assert((std::is_integral_v<T> || std::is_enum_v<T>)&&sizeof(T) == 4);
  m_itemName = name;
  if (m_failed) return;
  if (m_direction == kWrite) {
    const std::size_t n = values.size();
    CheckWrite(4 * static_cast<std::uint64_t>(n) + 4);
    Put8('V');
    Put16(static_cast<std::uint16_t>(4 * n + 1));
    Put8(4);
    if (n != 0) std::memcpy(m_cursor, values.data(), 4 * n);
    m_cursor += 4 * n;
  } else {
    const std::int64_t n = BeginReadIntVector();
    if (n < 0) return;
    values.clear();
    values.resize(static_cast<std::size_t>(n));
    if (n != 0) std::memcpy(values.data(), m_cursor, 4 * n);
    EndReadIntVector(values.data(), static_cast<std::size_t>(n));
  }
  ++m_itemNumber;
}

template <typename T>
void XStreamable::TransferObjectVector(const char* name,
                                       std::vector<T>& elements) {
  static_assert(std::is_base_of_v<XStreamable, T>);
  m_itemName = name;
  if (m_failed) return;
  if (m_direction == kWrite) {
    char* span = nullptr;
    BeginWriteObjectVector(elements.size(), span);
    for (T& element : elements) WriteElement(element);
    EndWriteObjectVector(span);
  } else {
    std::uint64_t remaining = 0;
    const std::int64_t n = BeginReadObjectVector(remaining);
    if (n < 0) return;
    elements.clear();
    // Every element takes at least a header, so the reservation never
    // exceeds what the bytes can hold.
    elements.reserve(static_cast<std::size_t>(
        std::min<std::uint64_t>(n, remaining / kHeaderLength)));
    for (std::int64_t i = 0; i < n; ++i) {
      T element;
      ReadElement(element, remaining);
      elements.push_back(element);
    }
  }
  EndItem();
}

}  // namespace nv_ns

#endif  // NVSHARED_MESSAGING_XSTREAMABLE_H_
