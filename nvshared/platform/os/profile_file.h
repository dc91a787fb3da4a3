// nvshared::os::ProfileFile: a profile (INI) file parsed once and then asked
// by section and key the way the Windows profile functions answer, so that
// code written against GetPrivateProfileSectionNamesA and
// GetPrivateProfileStringA keeps its behaviour, buffer cutting included.
//
// What the parser accepts, line by line (LF, CR LF or CR ends a line; a NUL
// byte also ends one):
//
//   line    = blank* ( section | comment | entry | "" ) blank*
//   section = "[" name "]" anything     name: up to the last "]" of the line,
//                                       blanks around it trimmed
//   comment = ";" anything
//   entry   = key [ "=" value ]         key and value trimmed of blanks; a
//                                       value wrapped in matching single or
//                                       double quotes loses them
//
// Blanks are spaces and tabs. A key without "=" has no value, so a lookup of
// it yields the default. Entries before the first section belong to no
// section and are never found. A "[" line without "]" is ignored.
//
// Section and key names compare without regard to ASCII case. A lookup reads
// the first section of a name and, in it, the first entry of a key; the list
// of names still names a repeated section once for each time it appears.
//
// Threads: a ProfileFile is immutable after construction; any number of
// threads may query one at once.
#ifndef NVSHARED_PLATFORM_OS_PROFILE_FILE_H_
#define NVSHARED_PLATFORM_OS_PROFILE_FILE_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "nvshared/export.h"
#include "nvshared/status.h"

namespace nvshared::os {

class ProfileFile {
 public:
  // A profile without sections.
  ProfileFile() = default;

  // Parses text held in memory. Never fails: what is not understood is
  // ignored, as the Windows functions do.
  static ProfileFile Parse(std::string_view text);
  // Reads and parses the file at `path`. An error names the path and the
  // reason when the file cannot be read.
  static StatusOr<ProfileFile> Read(const std::string& path);

  // Like GetPrivateProfileSectionNamesA: every section name in file order,
  // each followed by a NUL, and one more NUL at the end. Returns the number
  // of characters stored, not counting the final NUL. When the names do not
  // fit, the last one that starts is cut to what fits, the list still ends
  // in two NULs, and the result is `size` - 2. A `size` below 2 stores what
  // fits of the terminators and returns 0.
  std::size_t GetSectionNames(char* buffer, std::size_t size) const;

  // Like GetPrivateProfileStringA with a section and a key: copies the value
  // (or `defaultValue`, null counting as "", when the key or the section is
  // missing) into `buffer` with a NUL. A text longer than `size` - 1 is cut
  // to `size` - 1 characters. Returns the number of characters stored, not
  // counting the NUL. A `size` of 0 stores nothing and returns 0.
  std::size_t GetString(std::string_view section, std::string_view key,
                        const char* defaultValue, char* buffer,
                        std::size_t size) const;

  // The section names in file order, repeats included.
  const std::vector<std::string>& section_names() const { return names_; }

 private:
  struct Section {
    // Lower-cased key to value; only the first entry of a key is kept, and
    // a key written without "=" has no value.
    std::unordered_map<std::string, std::optional<std::string>> values;
  };

  std::vector<std::string> names_;
  // Lower-cased section name to the first section of that name.
  std::unordered_map<std::string, Section> sections_;
};

}  // namespace nvshared::os

#endif  // NVSHARED_PLATFORM_OS_PROFILE_FILE_H_
