// Reads arbitrary bytes as the capture of a whole OpaqueDataMessage or
// dictionary. A refused capture must say why; an accepted one must save back
// and read again to the same attachments. A crash, a sanitizer report or an
// exception is a finding.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "nvshared/platform/utils/opaque_capture.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  auto first = nv_ns::OpaqueCapture::Read(bytes);
  if (!first.ok()) {
    if (first.status().message().empty()) std::abort();
    return 0;
  }
  const bool is_message =
      first->carrier == nv_ns::OpaqueCapture::Carrier::kMessage;
  auto saved = is_message ? nv_ns::OpaqueCapture::Save(first->message)
                          : nv_ns::OpaqueCapture::Save(first->entries);
  if (!saved.ok()) std::abort();
  // A message keeps the order of its attachments, so it saves back exactly.
  if (is_message && *saved != bytes) std::abort();
  auto second = nv_ns::OpaqueCapture::Read(*saved);
  if (!second.ok()) std::abort();
  auto again = is_message ? nv_ns::OpaqueCapture::Save(second->message)
                          : nv_ns::OpaqueCapture::Save(second->entries);
  if (!again.ok() || *again != *saved) std::abort();
  return 0;
}
