// Factories of Streamable classes, and VIAControl, the process-wide registry
// that creates a staged class from the id the stream carries.
//
// VIAFactoryBase::Create returns a new instance with all defaults, owned by
// the caller, or null if memory runs out; Destroy deletes one. VIAControl
// owns the factories staged with it for the life of the process.
// Threads: VIAControl's operations are safe from any thread.
#ifndef NVSHARED_PLATFORM_STREAM_VIA_FACTORY_H_
#define NVSHARED_PLATFORM_STREAM_VIA_FACTORY_H_

#include <new>
#include <string>

#include "nvshared/export.h"
#include "nvshared/platform/stream/streamable.h"

namespace dv_stream_ns {

class NVSHARED_API VIAFactoryBase {
 public:
  VIAFactoryBase() = default;
  VIAFactoryBase(const VIAFactoryBase&) = delete;
  VIAFactoryBase& operator=(const VIAFactoryBase&) = delete;
  virtual ~VIAFactoryBase();

  // A new default instance on the heap, or null if it can't be allocated.
  virtual Streamable* Create() = 0;
  // Deletes `instance` through its virtual destructor; null is ignored.
  virtual void Destroy(Streamable* instance);
};

template <class T>
class VIAFactory : public VIAFactoryBase {
 public:
  Streamable* Create() override { return new (std::nothrow) T(); }
};

class NVSHARED_API VIAControl {
 public:
  // Registers `factory` for class `id` under `name` and takes ownership of
  // it. The first factory staged for an id stays: a later one for the same
  // id, and a null one, are refused and false is returned (a refused
  // factory is deleted at once).
  static bool Stage(unsigned short id, const std::string& name,
                    VIAFactoryBase* factory);

  // A new default instance of the class staged for `id`, owned by the
  // caller; null if none is staged or the factory returns null.
  static Streamable* Create(unsigned short id);
  // The name staged for `id`; empty if none.
  static std::string ClassName(unsigned short id);
  static bool IsStaged(unsigned short id);
};

}  // namespace dv_stream_ns

#endif  // NVSHARED_PLATFORM_STREAM_VIA_FACTORY_H_
