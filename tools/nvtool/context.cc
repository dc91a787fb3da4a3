#include "tools/nvtool/context.h"

#include <cmath>

#include "nvshared/platform/core/reference_data.h"

namespace nvtool {

CLI::Validator FiniteNumber() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        double value = 0.0;
        if (!CLI::detail::lexical_cast(text, value)) {
          return "Value " + text + " not a number";
        }
        return std::isfinite(value) ? ""
                                    : "must be a finite number, not " + text;
      },
      "");
}

nvshared::Status Context::LoadReferenceData() const {
  if (!refdataPath.empty()) {
    return dv_core_ns::ReferenceData::LoadFile(refdataPath);
  }
  return dv_core_ns::ReferenceData::LoadJson(kEmbeddedReferenceData,
                                             "bundled reference data");
}

}  // namespace nvtool
