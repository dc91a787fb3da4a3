// Text helpers of the custom-name registry: trimming of multibyte white
// space, and the numbered-insert expansion of prompt texts. Not installed.
#ifndef NVSHARED_NAMING_INTERNAL_NAME_TEXT_H_
#define NVSHARED_NAMING_INTERNAL_NAME_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace nv_fmt::internal {

// `text` without its trailing, then leading, white space. The text is walked
// character by character in the process's multibyte encoding (LC_CTYPE);
// under the "C" locale it is taken as UTF-8 and the Unicode white space
// characters count. A byte that starts no valid character is not space.
std::string TrimName(std::string_view text);

// Expands the numbered inserts of a message text: %1 to %99 take
// `args[n - 1]` (an optional "!s!"-style type after the number is
// accepted and dropped; only strings are passed), %% gives %, %n a line
// break, %0 ends the text, and %<other> gives <other>. An insert beyond
// `args` expands to nothing. The result is cut to `capacity` - 1 bytes.
std::string ExpandInserts(std::string_view text,
                          const std::vector<std::string>& args,
                          std::size_t capacity);

}  // namespace nv_fmt::internal

#endif  // NVSHARED_NAMING_INTERNAL_NAME_TEXT_H_
