// dv_core_ns::CoreClass: the polymorphic base of the core's products, series,
// legs and leg lists. It carries the object's agile data: text values keyed
// by a signed 16-bit tag, which travel with the object without its class
// knowing them. Not synchronised: an object belongs to one thread at a time.
#ifndef NVSHARED_PLATFORM_CORE_CORE_CLASS_H_
#define NVSHARED_PLATFORM_CORE_CORE_CLASS_H_

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "nvshared/export.h"

namespace dv_core_ns {

class NVSHARED_API CoreClass {
 public:
  CoreClass() = default;
  CoreClass(const CoreClass&) = default;
  CoreClass(CoreClass&&) noexcept = default;
  CoreClass& operator=(const CoreClass&) = default;
  CoreClass& operator=(CoreClass&&) noexcept = default;
  virtual ~CoreClass();

  // True if the store holds `tag`.
  bool AgileElementExists(short tag) const;

  // Adds or replaces the value of `tag`. True on success.
  template <typename T>
  bool StoreAgileData(short tag, const T& value) {
    static_assert(std::is_same_v<T, std::string>,
                  "agile data holds text values");
    return StoreAgileText(tag, value);
  }

  // Copies the value of `tag` into `value` and removes it if `remove` is set.
  // False, with `value` untouched, if the tag is absent.
  template <typename T>
  bool RetrieveAgileDataWithOptionalRemove(short tag, T& value, bool remove) {
    static_assert(std::is_same_v<T, std::string>,
                  "agile data holds text values");
    return RetrieveAgileText(tag, value, remove);
  }

  // Read-only access for const objects: the value of `tag`, or null.
  const std::string* FindAgileData(short tag) const;

  // Every tag and value, in the order the tags were first stored.
  const std::vector<std::pair<short, std::string>>& AgileData() const {
    return agile_;
  }

 private:
  bool StoreAgileText(short tag, const std::string& value);
  bool RetrieveAgileText(short tag, std::string& value, bool remove);

  // A handful of tags at most, so a vector beats a map and copies cheaply
  // when empty.
  std::vector<std::pair<short, std::string>> agile_;
};

}  // namespace dv_core_ns

#endif  // NVSHARED_PLATFORM_CORE_CORE_CLASS_H_
