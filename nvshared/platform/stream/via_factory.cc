#include "nvshared/platform/stream/via_factory.h"

#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace dv_stream_ns {
namespace {

struct StagedClass {
  std::string name;
  std::unique_ptr<VIAFactoryBase> factory;
};

struct Registry {
  std::mutex mutex;
  std::map<unsigned short, StagedClass> classes;
};

// Never destroyed: classes may be created while other statics are torn
// down at exit.
Registry& TheRegistry() {
  static Registry* registry = new Registry;
  return *registry;
}

}  // namespace

VIAFactoryBase::~VIAFactoryBase() = default;

void VIAFactoryBase::Destroy(Streamable* instance) { delete instance; }

bool VIAControl::Stage(unsigned short id, const std::string& name,
                       VIAFactoryBase* factory) {
  std::unique_ptr<VIAFactoryBase> owned(factory);
  if (owned == nullptr) return false;
  Registry& registry = TheRegistry();
  std::lock_guard lock(registry.mutex);
  return registry.classes.try_emplace(id, StagedClass{name, std::move(owned)})
      .second;
}

Streamable* VIAControl::Create(unsigned short id) {
  VIAFactoryBase* factory = nullptr;
  {
    Registry& registry = TheRegistry();
    std::lock_guard lock(registry.mutex);
    const auto it = registry.classes.find(id);
    if (it == registry.classes.end()) return nullptr;
    factory = it->second.factory.get();
  }
  // Outside the lock, so that a factory may use the registry itself. Staged
  // factories are never removed or freed, so the pointer stays good.
  return factory->Create();
}

std::string VIAControl::ClassName(unsigned short id) {
  Registry& registry = TheRegistry();
  std::lock_guard lock(registry.mutex);
  const auto it = registry.classes.find(id);
  return it == registry.classes.end() ? std::string() : it->second.name;
}

bool VIAControl::IsStaged(unsigned short id) {
  Registry& registry = TheRegistry();
  std::lock_guard lock(registry.mutex);
  return registry.classes.contains(id);
}

}  // namespace dv_stream_ns
