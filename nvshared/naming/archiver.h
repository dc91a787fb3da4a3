// The archive interfaces through which the formatter reads and writes the
// custom-names file: nv_fmt::IArchiver, one open file of typed items, and
// nv_fmt::IArchiverFactory, which makes and frees archivers. Hosts may supply
// their own; the library ships one (binary_archiver.h).
//
// The file holds, in order: the version, the count of entries, then per
// entry the series, the expiration date, whether it has one, the name, and
// for a spread or strategy its legs.
//
// Ownership: an archiver belongs to the factory that made it and goes back to
// it through Destroy. Threads: an archiver is used by one thread at a time.
//
// A reader reports a damaged file by throwing from a Read call; the formatter
// catches it, keeps the entries read so far and rewrites the file.
#ifndef NVSHARED_NAMING_ARCHIVER_H_
#define NVSHARED_NAMING_ARCHIVER_H_

#include <cstddef>
#include <string>

#include "nvshared/export.h"
#include "nvshared/platform/core/date_time.h"
#include "nvshared/platform/core/ids.h"
#include "nvshared/platform/core/legs.h"

namespace nv_fmt {

class NVSHARED_API IArchiver {
 public:
  virtual ~IArchiver();
  // `mode` 0 opens `path` to read, 1 to write. True on success.
  virtual bool Open(const char* path, int mode) = 0;
  // Ends the file; a writer makes what it wrote the file's content here.
  virtual void Close() = 0;
  virtual void WriteBool(bool value) = 0;
  virtual void WriteString(const std::string& value) = 0;
  virtual void WriteLegList(const dv_core_ns::FullLegList* legs) = 0;
  virtual void WriteDate(const dv_core_ns::Date& date) = 0;
  virtual void WriteSeriesID(const dv_core_ns::SeriesID& series) = 0;
  virtual void WriteVersion(unsigned version) = 0;
  virtual void WriteCount(std::size_t count) = 0;
  virtual void ReadBool(bool& value) = 0;
  virtual void ReadString(std::string& value) = 0;
  // Fills `*legs`, which must not be null.
  virtual void ReadLegList(dv_core_ns::FullLegList* legs) = 0;
  virtual void ReadDate(dv_core_ns::Date& date) = 0;
  virtual void ReadSeriesID(dv_core_ns::SeriesID& series) = 0;
  virtual void ReadVersion(unsigned& version) = 0;
  virtual void ReadCount(int& count) = 0;
  // True when opened to write.
  virtual bool IsStoring() const = 0;
};

class NVSHARED_API IArchiverFactory {
 public:
  virtual ~IArchiverFactory();
  virtual IArchiver* Create() = 0;
  virtual void Destroy(IArchiver* archiver) = 0;
};

}  // namespace nv_fmt

#endif  // NVSHARED_NAMING_ARCHIVER_H_
