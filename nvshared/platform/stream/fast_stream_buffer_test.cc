#include "nvshared/platform/stream/fast_stream_buffer.h"

#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "nvshared/platform/stream/stream_exceptions.h"

namespace dv_stream_ns {
namespace {

std::string Written(const FastStreamBuffer& buffer) {
  return std::string(buffer.data(), buffer.write_position());
}

TEST(FastStreamBuffer, GrowsByTheRuleAndKeepsItsContents) {
  struct Case {
    std::size_t capacity, filled, write, grown;
  } cases[] = {
      {0, 0, 1, 1792},        // 1.75 * 1024, whatever is needed
      {0, 0, 1792, 1792},     // exactly the first step
      {0, 0, 4000, 10136},    // 1792 can't hold it: 1.75 * (1792 + 4000)
      {3, 0, 4, 12},          // 1.75 * (3 + 4) = 12.25
      {10, 8, 4, 24},         // 1.75 * (10 + 4) = 24.5
      {100, 100, 1, 176},     // 1.75 * 101 = 176.75
      {1792, 1792, 8, 3150},  // 1.75 * 1800
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.capacity) + "+" + std::to_string(c.write));
    FastStreamBuffer buffer(c.capacity);
    const std::string head(c.filled, 'h');
    buffer.Write(head.data(), head.size());
    const std::string tail(c.write, 't');
    buffer.Write(tail.data(), tail.size());
    EXPECT_EQ(buffer.capacity(), c.grown);
    EXPECT_EQ(Written(buffer), head + tail);
    EXPECT_TRUE(buffer.owns_store());
  }
}

TEST(FastStreamBuffer, BorrowedStoreIsLeftBehindWhenItGrows) {
  char store[4] = {'a', 'b', 0, 0};
  FastStreamBuffer buffer(store, sizeof store, 2, true);
  EXPECT_FALSE(buffer.owns_store());
  buffer.Write("cdef", 4);
  EXPECT_TRUE(buffer.owns_store());
  EXPECT_EQ(buffer.capacity(), 14u);  // 1.75 * (4 + 4)
  EXPECT_EQ(Written(buffer), "abcdef");
  EXPECT_EQ(std::string(store, 4), std::string("ab\0\0", 4));
}

TEST(FastStreamBuffer, ThatMayNotGrowRefusesAtOnceAndWritesNothing) {
  char store[8];
  FastStreamBuffer buffer(store, sizeof store, 0, false);
  buffer.Write("123456", 6);
  try {
    buffer.Write("7890", 4);
    FAIL() << "no overflow";
  } catch (const StreamOverflow& e) {
    EXPECT_STREQ(e.what(),
                 "Attempt to write 4 bytes to FastStreamBuffer failed; "
                 "capacity=8 pos=6");
  }
  EXPECT_EQ(Written(buffer), "123456");
  EXPECT_EQ(buffer.capacity(), 8u);
}

TEST(FastStreamBuffer, ReadOnlyViewReadsAndNeverWrites) {
  FastStreamBuffer view("xyz", 3);
  EXPECT_THROW(view.Write("!", 1), StreamOverflow);
  char out[4] = {};
  EXPECT_FALSE(view.Read(out, 4));  // a short read consumes nothing
  EXPECT_TRUE(view.Read(out, 3));
  EXPECT_STREQ(out, "xyz");

  // Clear and set_may_grow must not open a way into the caller's bytes: the
  // store lives in read-only memory, so a write through it would fault.
  static const char kStore[] = "abc";
  FastStreamBuffer cleared(kStore, 3);
  cleared.Clear();
  EXPECT_THROW(cleared.Write("!", 1), StreamOverflow);
  cleared.set_may_grow(true);
  cleared.Write("!", 1);  // copies into a store of its own
  EXPECT_FALSE(cleared.read_only());
  EXPECT_TRUE(cleared.owns_store());
  EXPECT_EQ(Written(cleared), "!");
  EXPECT_STREQ(kStore, "abc");
}

}  // namespace
}  // namespace dv_stream_ns
