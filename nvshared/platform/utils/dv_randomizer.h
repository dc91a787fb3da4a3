// nv_ns::DVRandomizer: a small pseudo-random source over a state that the
// caller owns. Equal starting states give equal sequences on every platform,
// which is what makes a seeded shuffle of order portions reproducible.
//
// The randomizer holds a reference to the state and advances it on each
// call, so the state must outlive it. One thread at a time per state.
#ifndef NVSHARED_PLATFORM_UTILS_DV_RANDOMIZER_H_
#define NVSHARED_PLATFORM_UTILS_DV_RANDOMIZER_H_

#include "nvshared/export.h"

namespace nv_ns {

class NVSHARED_API DVRandomizer {
 public:
  explicit DVRandomizer(unsigned& state) : state_(state) {}

  // Advances the state and returns a number below `bound`, or any 32-bit
  // number when `bound` is 0. Callers may still reduce it modulo `bound`.
  unsigned operator()(unsigned bound);

 private:
  unsigned& state_;
};

}  // namespace nv_ns

#endif  // NVSHARED_PLATFORM_UTILS_DV_RANDOMIZER_H_
