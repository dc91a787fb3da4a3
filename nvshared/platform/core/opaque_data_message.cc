#include "nvshared/platform/core/opaque_data_message.h"

namespace dv_core_ns {

OpaqueDataMessage::~OpaqueDataMessage() = default;

}  // namespace dv_core_ns
