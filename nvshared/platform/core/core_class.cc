#include "nvshared/platform/core/core_class.h"

#include <algorithm>

namespace dv_core_ns {

CoreClass::~CoreClass() = default;

bool CoreClass::AgileElementExists(short tag) const {
  return FindAgileData(tag) != nullptr;
}

const std::string* CoreClass::FindAgileData(short tag) const {
  auto it = std::find_if(agile_.begin(), agile_.end(),
                         [tag](const auto& e) { return e.first == tag; });
  return it == agile_.end() ? nullptr : &it->second;
}

bool CoreClass::StoreAgileText(short tag, const std::string& value) {
  auto it = std::find_if(agile_.begin(), agile_.end(),
                         [tag](const auto& e) { return e.first == tag; });
  if (it == agile_.end()) {
    agile_.emplace_back(tag, value);
  } else {
    it->second = value;
  }
  return true;
}

bool CoreClass::RetrieveAgileText(short tag, std::string& value, bool remove) {
  auto it = std::find_if(agile_.begin(), agile_.end(),
                         [tag](const auto& e) { return e.first == tag; });
  if (it == agile_.end()) return false;
  value = it->second;
  if (remove) agile_.erase(it);
  return true;
}

}  // namespace dv_core_ns
