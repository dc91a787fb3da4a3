// dv_core_ns::OpaqueDataMessage: the core's message whose only content is its
// agile attachments, byte strings keyed by a 16-bit id. The opaque and
// internal message families store one tagged object per attachment. The
// message owns copies of what is stored in it. Not synchronised: a message
// belongs to one thread at a time.
#ifndef NVSHARED_PLATFORM_CORE_OPAQUE_DATA_MESSAGE_H_
#define NVSHARED_PLATFORM_CORE_OPAQUE_DATA_MESSAGE_H_

#include "nvshared/export.h"
#include "nvshared/platform/core/core_class.h"

namespace dv_core_ns {

// Attachments go through CoreClass: AgileElementExists,
// StoreAgileData<std::string> and RetrieveAgileDataWithOptionalRemove
// <std::string>. The strings hold arbitrary bytes, NULs included.
class NVSHARED_API OpaqueDataMessage : public CoreClass {
 public:
  OpaqueDataMessage() = default;
  ~OpaqueDataMessage() override;
};

}  // namespace dv_core_ns

#endif  // NVSHARED_PLATFORM_CORE_OPAQUE_DATA_MESSAGE_H_
