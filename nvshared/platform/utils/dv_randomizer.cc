#include "nvshared/platform/utils/dv_randomizer.h"

#include <cstdint>

namespace nv_ns {

// A Weyl step followed by a 32-bit finaliser (the mix of MurmurHash3): every
// state, zero included, yields a well-spread number, and the sequence does
// not depend on the width of `unsigned` beyond 32 bits.
unsigned DVRandomizer::operator()(unsigned bound) {
  std::uint32_t s = static_cast<std::uint32_t>(state_) + 0x9E3779B9u;
  state_ = s;
  std::uint32_t z = s;
  z = (z ^ (z >> 16)) * 0x85EBCA6Bu;
  z = (z ^ (z >> 13)) * 0xC2B2AE35u;
  z ^= z >> 16;
  return bound == 0 ? z : z % bound;
}

}  // namespace nv_ns
