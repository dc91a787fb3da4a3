#include "tools/nvtool/context.h"

#include "nvshared/platform/core/reference_data.h"

namespace nvtool {

nvshared::Status Context::LoadReferenceData() const {
  if (!refdataPath.empty()) {
    return dv_core_ns::ReferenceData::LoadFile(refdataPath);
  }
  return dv_core_ns::ReferenceData::LoadJson(kEmbeddedReferenceData,
                                             "bundled reference data");
}

}  // namespace nvtool
