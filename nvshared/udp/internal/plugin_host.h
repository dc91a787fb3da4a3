// The host's side of the plug-in boundary: the error that a failed status
// becomes (PluginError), the text of a status, and the host-owned text and
// table objects that plug-ins write into and read from.
//
// Internal to the library. Threads: plain values, one thread at a time.
#ifndef NVSHARED_UDP_INTERNAL_PLUGIN_HOST_H_
#define NVSHARED_UDP_INTERNAL_PLUGIN_HOST_H_

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "nvshared/udp/price_model_sdk.h"

namespace nvshared::udp_internal {

// The text of a status: the standard statuses' own texts, then
// "IDispatch error #n" for 0x80040200 + n (n > 0), else "Unknown error 0x..".
std::string StatusText(nv_pm::NvStatus status);

// True if `text` is well-formed UTF-8 (no overlong forms, surrogates or
// values above U+10FFFF).
bool IsValidUtf8(const std::string& text);

// A failed status raised by the host: the status, an optional description
// and the status's text.
class PluginError : public std::exception {
 public:
  explicit PluginError(nv_pm::NvStatus status,
                       std::optional<std::string> description = std::nullopt)
      : status_(status),
        description_(std::move(description)),
        text_(StatusText(status)) {}
  nv_pm::NvStatus status() const { return status_; }
  const std::optional<std::string>& description() const { return description_; }
  const std::string& ErrorMessage() const { return text_; }
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  nv_pm::NvStatus status_;
  std::optional<std::string> description_;
  std::string text_;
};

// Raises a PluginError for a failed status; a success passes.
inline void Check(nv_pm::NvStatus status) {
  if (nv_pm::Failed(status)) throw PluginError(status);
}

// A text the plug-in assigns.
class HostText final : public nv_pm::ITextOut {
 public:
  nv_pm::NvStatus Assign(const char* text) override;
  std::string value;
};

// A table of optional texts. Without a shape until Resize (or constructed
// with one).
class HostTable final : public nv_pm::IStringTable {
 public:
  // The largest number of cells a plug-in may ask for.
  static constexpr long long kMaxCells = 1 << 16;

  HostTable() = default;
  HostTable(int rows, int columns) { Resize(rows, columns); }

  int32_t Rows() const override { return rows_; }
  int32_t Columns() const override { return columns_; }
  nv_pm::NvStatus Resize(int32_t rows, int32_t columns) override;
  nv_pm::NvStatus Get(int32_t row, int32_t column,
                      nv_pm::ITextOut* text) const override;
  nv_pm::NvStatus Set(int32_t row, int32_t column, const char* text) override;
  // Makes a cell absent again (a read of it then fails).
  void Clear(int32_t row, int32_t column);

 private:
  bool Inside(int32_t row, int32_t column) const {
    return row >= 0 && column >= 0 && row < rows_ && column < columns_;
  }
  int32_t rows_ = -1;
  int32_t columns_ = -1;
  std::vector<std::optional<std::string>> cells_;
};

}  // namespace nvshared::udp_internal

#endif  // NVSHARED_UDP_INTERNAL_PLUGIN_HOST_H_
