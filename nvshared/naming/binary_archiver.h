// nv_fmt::BinaryArchiver: the library's own archiver of the custom-names
// file, in the binary form of docs/formats/series-names-file.md, and
// BinaryArchiverFactory, which a host hands to
// SeriesNameFormatter::SetArchiverFactory.
//
// Writing collects the items in memory; Close replaces the file atomically
// (temporary file, flush, rename, flush of the directory), so a crash leaves
// the old file or the new one, whole. Reading loads the file at Open and
// checks every length against what remains; a truncated or damaged item
// throws BinaryArchiveError, and the archiver stays failed from then on.
//
// Ownership: each archiver owns its buffer. Threads: an archiver belongs to
// one thread at a time; the factory is safe from any thread.
#ifndef NVSHARED_NAMING_BINARY_ARCHIVER_H_
#define NVSHARED_NAMING_BINARY_ARCHIVER_H_

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "nvshared/export.h"
#include "nvshared/naming/archiver.h"

namespace nv_fmt {

// What a reader throws on a damaged or truncated file.
class NVSHARED_API BinaryArchiveError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class NVSHARED_API BinaryArchiver : public IArchiver {
 public:
  // The first bytes of every file, and the version of the byte form.
  static constexpr std::string_view kMagic = "NVSN";
  static constexpr unsigned kFormatVersion = 1;

  BinaryArchiver() = default;
  BinaryArchiver(const BinaryArchiver&) = delete;
  BinaryArchiver& operator=(const BinaryArchiver&) = delete;
  ~BinaryArchiver() override;

  // Reading: false if the file cannot be read. A file that does not start
  // with the magic and format version opens, and throws at the first Read.
  bool Open(const char* path, int mode) override;
  // Writing: replaces the file with what was written. Nothing is written if
  // the archiver was not opened to write.
  void Close() override;

  // Reads from bytes in memory instead of a file, for checks and fuzzing.
  void OpenBytes(std::string_view bytes);
  // The bytes written so far (magic and format version included).
  const std::string& Bytes() const { return buffer_; }
  // False once Close failed to replace the file.
  bool Saved() const { return saved_; }

  void WriteBool(bool value) override;
  void WriteString(const std::string& value) override;
  void WriteLegList(const dv_core_ns::FullLegList* legs) override;
  void WriteDate(const dv_core_ns::Date& date) override;
  void WriteSeriesID(const dv_core_ns::SeriesID& series) override;
  void WriteVersion(unsigned version) override;
  void WriteCount(std::size_t count) override;
  void ReadBool(bool& value) override;
  void ReadString(std::string& value) override;
  void ReadLegList(dv_core_ns::FullLegList* legs) override;
  void ReadDate(dv_core_ns::Date& date) override;
  void ReadSeriesID(dv_core_ns::SeriesID& series) override;
  void ReadVersion(unsigned& version) override;
  void ReadCount(int& count) override;
  bool IsStoring() const override { return storing_; }

 private:
  template <typename Body>
  void Read(Body&& body);

  std::string path_;
  std::string buffer_;
  std::size_t pos_ = 0;
  bool storing_ = false;
  bool open_ = false;
  bool failed_ = false;
  bool saved_ = true;
};

class NVSHARED_API BinaryArchiverFactory : public IArchiverFactory {
 public:
  IArchiver* Create() override;
  void Destroy(IArchiver* archiver) override;
};

}  // namespace nv_fmt

#endif  // NVSHARED_NAMING_BINARY_ARCHIVER_H_
