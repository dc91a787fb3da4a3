#include "nvshared/platform/utils/dv_randomizer.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

std::vector<unsigned> Draw(unsigned seed, unsigned bound, int count) {
  nv_ns::DVRandomizer random(seed);
  std::vector<unsigned> out;
  for (int i = 0; i < count; ++i) out.push_back(random(bound));
  return out;
}

TEST(DVRandomizerTest, EqualSeedsGiveEqualSequencesAndTheStateAdvances) {
  EXPECT_EQ(Draw(42, 1000, 20), Draw(42, 1000, 20));
  EXPECT_NE(Draw(42, 1000, 20), Draw(43, 1000, 20));
  unsigned state = 7;
  nv_ns::DVRandomizer random(state);
  random(10);
  EXPECT_NE(state, 7u);
}

TEST(DVRandomizerTest, StaysBelowTheBoundAndCoversIt) {
  std::vector<int> seen(7, 0);
  for (unsigned v : Draw(1, 7, 700)) {
    ASSERT_LT(v, 7u);
    ++seen[v];
  }
  for (int count : seen) EXPECT_GT(count, 50);
  // Bound 0 asks for the full range rather than dividing by zero.
  EXPECT_EQ(Draw(9, 0, 3).size(), 3u);
}

}  // namespace
