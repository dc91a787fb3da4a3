#include "nvshared/udp/internal/plugin_host.h"

#include <cstdint>
#include <cstdio>

namespace nvshared::udp_internal {

namespace {

struct KnownStatus {
  std::uint32_t status;
  const char* text;
};

// The texts the system gives for the statuses plug-ins commonly return.
constexpr KnownStatus kKnownStatuses[] = {
    {0x00000000u, "The operation completed successfully."},
    {0x00000001u, "The operation completed with a false result."},
    {0x80004001u, "Not implemented."},
    {0x80004002u, "No such interface supported."},
    {0x80004003u, "Invalid pointer."},
    {0x80004004u, "Operation aborted."},
    {0x80004005u, "Unspecified error."},
    {0x8000FFFFu, "Catastrophic failure."},
    {0x80020005u, "Type mismatch."},
    {0x8002000Bu, "Invalid index."},
    {0x8007000Eu, "Not enough memory."},
    {0x80070057u, "The parameter is incorrect."},
};

}  // namespace

std::string StatusText(nv_pm::NvStatus status) {
  const auto bits = static_cast<std::uint32_t>(status);
  for (const KnownStatus& known : kKnownStatuses) {
    if (known.status == bits) return known.text;
  }
  char text[64];
  if (bits > 0x80040200u && bits <= 0x8004FFFFu) {
    std::snprintf(text, sizeof text, "IDispatch error #%d",
                  static_cast<int>(bits - 0x80040200u));
  } else {
    std::snprintf(text, sizeof text, "Unknown error 0x%0lX",
                  static_cast<unsigned long>(bits));
  }
  return text;
}

bool IsValidUtf8(const std::string& text) {
  const auto* p = reinterpret_cast<const unsigned char*>(text.data());
  const auto* end = p + text.size();
  while (p < end) {
    const unsigned char lead = *p++;
    if (lead < 0x80) continue;
    int more = 0;
    std::uint32_t value = 0, least = 0;
    if ((lead & 0xE0) == 0xC0) {
      more = 1, value = lead & 0x1F, least = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
      more = 2, value = lead & 0x0F, least = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
      more = 3, value = lead & 0x07, least = 0x10000;
    } else {
      return false;
    }
    if (end - p < more) return false;
    for (int i = 0; i < more; ++i, ++p) {
      if ((*p & 0xC0) != 0x80) return false;
      value = value << 6 | (*p & 0x3F);
    }
    if (value < least || value > 0x10FFFF ||
        (value >= 0xD800 && value <= 0xDFFF)) {
      return false;
    }
  }
  return true;
}

nv_pm::NvStatus HostText::Assign(const char* text) {
  try {
    value = text != nullptr ? text : "";
    return nv_pm::kOk;
  } catch (...) {
    return nv_pm::kOutOfMemory;
  }
}

nv_pm::NvStatus HostTable::Resize(int32_t rows, int32_t columns) {
  if (rows < 0 || columns < 0) return nv_pm::kInvalidArgument;
  const long long cells = static_cast<long long>(rows) * columns;
  if (cells > kMaxCells) return nv_pm::kOutOfMemory;
  try {
    cells_.assign(static_cast<std::size_t>(cells), std::nullopt);
  } catch (...) {
    return nv_pm::kOutOfMemory;
  }
  rows_ = rows;
  columns_ = columns;
  return nv_pm::kOk;
}

nv_pm::NvStatus HostTable::Get(int32_t row, int32_t column,
                               nv_pm::ITextOut* text) const {
  if (text == nullptr) return nv_pm::kInvalidPointer;
  if (!Inside(row, column)) return nv_pm::kBadIndex;
  const auto& cell = cells_[static_cast<std::size_t>(row) * columns_ + column];
  if (!cell) return nv_pm::kTypeMismatch;
  return text->Assign(cell->c_str());
}

nv_pm::NvStatus HostTable::Set(int32_t row, int32_t column, const char* text) {
  if (!Inside(row, column)) return nv_pm::kBadIndex;
  try {
    cells_[static_cast<std::size_t>(row) * columns_ + column] =
        std::string(text != nullptr ? text : "");
    return nv_pm::kOk;
  } catch (...) {
    return nv_pm::kOutOfMemory;
  }
}

void HostTable::Clear(int32_t row, int32_t column) {
  if (Inside(row, column)) {
    cells_[static_cast<std::size_t>(row) * columns_ + column].reset();
  }
}

}  // namespace nvshared::udp_internal
