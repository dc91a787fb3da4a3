#include "tools/nvtool/context.h"

#include <cmath>

#include "nvshared/internal/ascii.h"
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

CLI::Validator OneOfNamed(
    std::vector<std::pair<std::string, std::string>> choices) {
  return CLI::Validator(
      [choices = std::move(choices)](std::string& text) -> std::string {
        std::string names;
        for (const auto& [word, value] : choices) {
          if (nvshared::internal::AsciiEqualIgnoreCase(text, word)) {
            text = value;
            return "";
          }
          names += (names.empty() ? "" : ", ") + word;
        }
        return "Value " + text + " is not one of " + names;
      },
      "");
}

CLI::Validator OneOf(const std::vector<std::string>& values) {
  std::vector<std::pair<std::string, std::string>> choices;
  for (const std::string& value : values) choices.emplace_back(value, value);
  return OneOfNamed(std::move(choices));
}

nvshared::Status Context::LoadReferenceData() const {
  if (!refdataPath.empty()) {
    return dv_core_ns::ReferenceData::LoadFile(refdataPath);
  }
  return dv_core_ns::ReferenceData::LoadJson(kEmbeddedReferenceData,
                                             "bundled reference data");
}

}  // namespace nvtool
