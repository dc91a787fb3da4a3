// The library's archiver of the custom-names file. The byte form, all
// numbers little-endian (docs/formats/series-names-file.md):
//
//   file     := "NVSN" u8:formatVersion(1) item*
//   item     := 'V' u32                     version
//             | 'C' i32                     count
//             | 'B' u8(0|1)                 bool
//             | 'T' text                    string
//             | 'D' date                    date
//             | 'S' series                  series
//             | 'L' u8:present [i16:combCode u32:n leg{n}]   leg list
//   text     := u32:length byte{length}
//   date     := i8:day i8:month i16:year
//   series   := i32:strikeDivisor i32:strikeDecimals i32:strike i16:combCode
//               u8:callPut u8:versionCode date:expiry date:contractExpiry
//               text:seriesKey opttext:seriesName opttext:seriesAttributes
//               agile product
//   product  := i32:exchange i32:productType text:productName agile
//   opttext  := u8:0 | u8:1 text
//   agile    := u16:n (i16:tag text){n}
//   leg      := i32:ratio i32:strike series
//
// Every length is checked against the bytes that remain before it is used,
// and nothing is sized from a length that was not checked.
#include "nvshared/naming/binary_archiver.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

#include "nvshared/platform/os/atomic_file.h"

namespace nv_fmt {

using dv_core_ns::Date;
using dv_core_ns::FullLeg;
using dv_core_ns::FullLegList;
using dv_core_ns::ProdID;
using dv_core_ns::SeriesID;

namespace {

// The fewest bytes a leg takes, to bound a leg count by what remains.
constexpr std::size_t kMinLegBytes = 4 + 4 +           // ratio, strike
                                     12 + 2 + 2 + 8 +  // series numbers
                                     4 + 1 + 1 + 2 +   // key, names, agile
                                     4 + 4 + 4 + 2;    // product

template <typename T>
void PutInt(std::string& out, T value) {
  using U = std::make_unsigned_t<T>;
  auto bits = static_cast<U>(value);
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    out += static_cast<char>(bits & 0xFF);
    bits = static_cast<U>(bits >> 8);
  }
}

void PutText(std::string& out, std::string_view text) {
  PutInt<std::uint32_t>(out, static_cast<std::uint32_t>(text.size()));
  out.append(text);
}

void PutDate(std::string& out, const Date& date) {
  PutInt<std::int8_t>(out, date.day);
  PutInt<std::int8_t>(out, date.month);
  PutInt<std::int16_t>(out, date.year);
}

void PutAgile(std::string& out, const dv_core_ns::CoreClass& object) {
  const auto& agile = object.AgileData();
  PutInt<std::uint16_t>(out, static_cast<std::uint16_t>(agile.size()));
  for (const auto& [tag, value] : agile) {
    PutInt<std::int16_t>(out, tag);
    PutText(out, value);
  }
}

void PutOptText(std::string& out, const dv_coreutils_ns::CharPtrWrapper& text) {
  PutInt<std::uint8_t>(out, text.IsNull() ? 0 : 1);
  if (!text.IsNull()) PutText(out, std::string_view(text.c_str(), text.size()));
}

void PutSeries(std::string& out, const SeriesID& series) {
  PutInt<std::int32_t>(out, series.strikeDivisor);
  PutInt<std::int32_t>(out, series.strikeDecimals);
  PutInt<std::int32_t>(out, series.strike);
  PutInt<std::int16_t>(out, series.combCode);
  PutInt<std::uint8_t>(out, static_cast<std::uint8_t>(series.callPut));
  PutInt<std::uint8_t>(out, static_cast<std::uint8_t>(series.versionCode));
  PutDate(out, series.expiry);
  PutDate(out, series.contractExpiry);
  PutText(out, series.seriesKey);
  PutOptText(out, series.seriesName);
  PutOptText(out, series.seriesAttributes);
  PutAgile(out, series);
  PutInt<std::int32_t>(out, series.product.exchange);
  PutInt<std::int32_t>(out, series.product.productType);
  PutText(out, series.product.productName);
  PutAgile(out, series.product);
}

// Reads items from the bytes of an open file, throwing on any damage.
class Cursor {
 public:
  Cursor(const std::string& bytes, std::size_t& pos)
      : bytes_(bytes), pos_(pos) {}

  std::size_t Remaining() const { return bytes_.size() - pos_; }

  void Need(std::size_t n, const char* what) const {
    if (n > Remaining()) Fail(std::string("truncated ") + what);
  }

  [[noreturn]] void Fail(const std::string& why) const {
    throw BinaryArchiveError("series names file: " + why + " at byte " +
                             std::to_string(pos_));
  }

  template <typename T>
  T Int(const char* what) {
    Need(sizeof(T), what);
    using U = std::make_unsigned_t<T>;
    U bits = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i) {
      bits = static_cast<U>(
          bits |
          static_cast<U>(
              static_cast<U>(static_cast<unsigned char>(bytes_[pos_ + i]))
              << (8 * i)));
    }
    pos_ += sizeof(T);
    return static_cast<T>(bits);
  }

  void Tag(char expected) {
    const char tag = static_cast<char>(Int<std::uint8_t>("item"));
    if (tag != expected) {
      --pos_;
      Fail(std::string("expected item '") + expected + "'");
    }
  }

  std::string Text(const char* what) {
    const std::uint32_t length = Int<std::uint32_t>(what);
    Need(length, what);
    std::string text = bytes_.substr(pos_, length);
    pos_ += length;
    return text;
  }

  Date ReadDate() {
    Date date;
    date.day = Int<std::int8_t>("date");
    date.month = Int<std::int8_t>("date");
    date.year = Int<std::int16_t>("date");
    return date;
  }

  void Agile(dv_core_ns::CoreClass& object) {
    const std::uint16_t count = Int<std::uint16_t>("agile count");
    for (std::uint16_t i = 0; i < count; ++i) {
      const auto tag = Int<std::int16_t>("agile tag");
      object.StoreAgileData(tag, Text("agile value"));
    }
  }

  void OptText(dv_coreutils_ns::CharPtrWrapper& text, const char* what) {
    const std::uint8_t present = Int<std::uint8_t>(what);
    if (present > 1) Fail(std::string("bad presence flag of ") + what);
    if (present == 0) {
      text.Reset();
      return;
    }
    const std::string value = Text(what);
    if (value.size() > dv_coreutils_ns::CharPtrWrapper::kMaxLength) {
      Fail(std::string("over-long ") + what);
    }
    text.Assign(value);
  }

  void Series(SeriesID& series) {
    SeriesID read;
    read.strikeDivisor = Int<std::int32_t>("series");
    read.strikeDecimals = Int<std::int32_t>("series");
    read.strike = Int<std::int32_t>("series");
    read.combCode = Int<std::int16_t>("series");
    read.callPut = static_cast<char>(Int<std::uint8_t>("series"));
    read.versionCode = static_cast<char>(Int<std::uint8_t>("series"));
    read.expiry = ReadDate();
    read.contractExpiry = ReadDate();
    const std::string key = Text("series key");
    if (key.size() >= dv_core_ns::kSeriesKeySize ||
        key.find('\0') != std::string::npos) {
      Fail("bad series key");
    }
    read.SetSeriesKey(key);
    OptText(read.seriesName, "series name");
    OptText(read.seriesAttributes, "series attributes");
    Agile(read);
    read.product.exchange = Int<std::int32_t>("product");
    read.product.productType = Int<std::int32_t>("product");
    const std::string name = Text("product name");
    if (name.size() >= dv_core_ns::kProductNameSize ||
        name.find('\0') != std::string::npos) {
      Fail("bad product name");
    }
    read.product.SetProductName(name);
    Agile(read.product);
    series = std::move(read);
  }

 private:
  const std::string& bytes_;
  std::size_t& pos_;
};

}  // namespace

BinaryArchiver::~BinaryArchiver() = default;

bool BinaryArchiver::Open(const char* path, int mode) {
  if (path == nullptr || open_ || (mode != 0 && mode != 1)) return false;
  path_ = path;
  pos_ = 0;
  failed_ = false;
  saved_ = true;
  storing_ = mode == 1;
  if (storing_) {
    buffer_.assign(kMagic);
    PutInt<std::uint8_t>(buffer_, static_cast<std::uint8_t>(kFormatVersion));
    open_ = true;
    return true;
  }
  auto contents = nvshared::os::ReadWholeFile(path_);
  if (!contents.ok()) return false;
  OpenBytes(*contents);
  return true;
}

void BinaryArchiver::OpenBytes(std::string_view bytes) {
  buffer_.assign(bytes);
  storing_ = false;
  open_ = true;
  failed_ = false;
  pos_ = 0;
  // A file of another kind or a later form fails at the first read.
  if (buffer_.size() < kMagic.size() + 1 ||
      buffer_.compare(0, kMagic.size(), kMagic) != 0 ||
      static_cast<unsigned char>(buffer_[kMagic.size()]) != kFormatVersion) {
    failed_ = true;
    return;
  }
  pos_ = kMagic.size() + 1;
}

void BinaryArchiver::Close() {
  if (open_ && storing_) {
    saved_ = nvshared::os::ReplaceFileAtomically(path_, buffer_).ok();
  }
  open_ = false;
}

void BinaryArchiver::WriteBool(bool value) {
  buffer_ += 'B';
  PutInt<std::uint8_t>(buffer_, value ? 1 : 0);
}

void BinaryArchiver::WriteString(const std::string& value) {
  buffer_ += 'T';
  PutText(buffer_, value);
}

void BinaryArchiver::WriteLegList(const FullLegList* legs) {
  buffer_ += 'L';
  PutInt<std::uint8_t>(buffer_, legs != nullptr ? 1 : 0);
  if (legs == nullptr) return;
  PutInt<std::int16_t>(buffer_, legs->combCode);
  PutInt<std::uint32_t>(buffer_, static_cast<std::uint32_t>(legs->legs.size()));
  for (const FullLeg& leg : legs->legs) {
    PutInt<std::int32_t>(buffer_, leg.ratio);
    PutInt<std::int32_t>(buffer_, leg.strike);
    const auto& series = leg.GetSharedSeriesID();
    PutSeries(buffer_, series ? *series : SeriesID());
  }
}

void BinaryArchiver::WriteDate(const Date& date) {
  buffer_ += 'D';
  PutDate(buffer_, date);
}

void BinaryArchiver::WriteSeriesID(const SeriesID& series) {
  buffer_ += 'S';
  PutSeries(buffer_, series);
}

void BinaryArchiver::WriteVersion(unsigned version) {
  buffer_ += 'V';
  PutInt<std::uint32_t>(buffer_, version);
}

void BinaryArchiver::WriteCount(std::size_t count) {
  buffer_ += 'C';
  // A count beyond the format's range is written as the largest one; no
  // registry comes near it.
  const std::size_t max = std::numeric_limits<std::int32_t>::max();
  PutInt<std::int32_t>(buffer_,
                       static_cast<std::int32_t>(std::min(count, max)));
}

// Each read runs through here: a failed archiver stays failed, and a damaged
// item marks it failed before the error leaves.
template <typename Body>
void BinaryArchiver::Read(Body&& body) {
  Cursor cursor(buffer_, pos_);
  if (!open_ || storing_) cursor.Fail("not open to read");
  if (failed_) cursor.Fail("not a series names file, or damaged");
  try {
    body(cursor);
  } catch (...) {
    failed_ = true;
    throw;
  }
}

void BinaryArchiver::ReadBool(bool& value) {
  Read([&](Cursor& cursor) {
    cursor.Tag('B');
    const std::uint8_t byte = cursor.Int<std::uint8_t>("bool");
    if (byte > 1) cursor.Fail("bad bool");
    value = byte == 1;
  });
}

void BinaryArchiver::ReadString(std::string& value) {
  Read([&](Cursor& cursor) {
    cursor.Tag('T');
    value = cursor.Text("string");
  });
}

void BinaryArchiver::ReadLegList(FullLegList* legs) {
  Read([&](Cursor& cursor) {
    if (legs == nullptr) cursor.Fail("no leg list to read into");
    cursor.Tag('L');
    const std::uint8_t present = cursor.Int<std::uint8_t>("leg list");
    if (present > 1) cursor.Fail("bad leg list flag");
    FullLegList read;
    if (present == 1) {
      read.combCode = cursor.Int<std::int16_t>("leg list");
      const std::uint32_t count = cursor.Int<std::uint32_t>("leg count");
      if (count > cursor.Remaining() / kMinLegBytes) {
        cursor.Fail("leg count beyond the file");
      }
      for (std::uint32_t i = 0; i < count; ++i) {
        const int ratio = cursor.Int<std::int32_t>("leg");
        const int strike = cursor.Int<std::int32_t>("leg");
        SeriesID series;
        cursor.Series(series);
        read.legs.emplace_back(series, ratio, strike);
      }
    }
    *legs = std::move(read);
  });
}

void BinaryArchiver::ReadDate(Date& date) {
  Read([&](Cursor& cursor) {
    cursor.Tag('D');
    date = cursor.ReadDate();
  });
}

void BinaryArchiver::ReadSeriesID(SeriesID& series) {
  Read([&](Cursor& cursor) {
    cursor.Tag('S');
    cursor.Series(series);
  });
}

void BinaryArchiver::ReadVersion(unsigned& version) {
  Read([&](Cursor& cursor) {
    cursor.Tag('V');
    version = cursor.Int<std::uint32_t>("version");
  });
}

void BinaryArchiver::ReadCount(int& count) {
  Read([&](Cursor& cursor) {
    cursor.Tag('C');
    count = cursor.Int<std::int32_t>("count");
  });
}

IArchiver* BinaryArchiverFactory::Create() { return new BinaryArchiver(); }

void BinaryArchiverFactory::Destroy(IArchiver* archiver) { delete archiver; }

IArchiver::~IArchiver() = default;
IArchiverFactory::~IArchiverFactory() = default;

}  // namespace nv_fmt
