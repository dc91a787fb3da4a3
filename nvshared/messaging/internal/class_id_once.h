// ClassIdOnce: builds one message class's VerClsId on first use and hands
// out copies. Three states change by compare-and-swap: 0 unbuilt, 1 being
// built, 2 built. The thread that moves 0 to 1 builds the value; one that
// finds 1 gives up its time slice and looks again. Meant for a constinit
// object per class, so it is ready before any static initialiser runs and
// is never destroyed.
#ifndef NVSHARED_MESSAGING_INTERNAL_CLASS_ID_ONCE_H_
#define NVSHARED_MESSAGING_INTERNAL_CLASS_ID_ONCE_H_

#include <atomic>
#include <new>
#include <thread>

#include "nvshared/platform/stream/streamable.h"

namespace nv_ns::internal {

class ClassIdOnce {
 public:
  constexpr ClassIdOnce() = default;
  ClassIdOnce(const ClassIdOnce&) = delete;
  ClassIdOnce& operator=(const ClassIdOnce&) = delete;

  // The id `classId` with an empty name, built by the first caller.
  dv_stream_ns::VerClsId Get(unsigned short classId) {
    for (;;) {
      int state = state_.load(std::memory_order_acquire);
      if (state == kBuilt) return *Value();
      if (state == kUnbuilt &&
          state_.compare_exchange_strong(state, kBuilding,
                                         std::memory_order_acq_rel)) {
        new (storage_) dv_stream_ns::VerClsId{classId, {}};
        state_.store(kBuilt, std::memory_order_release);
        return *Value();
      }
      if (state == kBuilding) std::this_thread::yield();
    }
  }

 private:
  static constexpr int kUnbuilt = 0;
  static constexpr int kBuilding = 1;
  static constexpr int kBuilt = 2;

  const dv_stream_ns::VerClsId* Value() const {
    return std::launder(
        reinterpret_cast<const dv_stream_ns::VerClsId*>(storage_));
  }

  std::atomic<int> state_{kUnbuilt};
  // Raw storage, so the object stays constant-initialised; the value is
  // never destroyed (its name is empty, so nothing is held).
  alignas(dv_stream_ns::VerClsId) unsigned char storage_[sizeof(
      dv_stream_ns::VerClsId)] = {};
};

}  // namespace nv_ns::internal

#endif  // NVSHARED_MESSAGING_INTERNAL_CLASS_ID_ONCE_H_
