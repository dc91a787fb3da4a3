#include "nvshared/naming/internal/text_piece.h"

#include <climits>
#include <cstdio>

#include <gtest/gtest.h>

namespace nv_fmt::internal {
namespace {

// printf is the oracle: every conversion the names use, over values and
// widths at and around their edges.
TEST(TextPieceTest, IntegersPrintAsPrintfPrintsThem) {
  const long long values[] = {0,  1,   -1,   7,    -7,      42,     -42,
                              99, 100, 1850, -150, INT_MAX, INT_MIN};
  const int widths[] = {0, 1, 2, 3, 5, 21, -1, -3, -21};
  char expected[128];
  for (long long v : values) {
    const int value = static_cast<int>(v);
    for (int width : widths) {
      std::snprintf(expected, sizeof expected, "%0*d", width, value);
      EXPECT_EQ(TextPiece().Int(value, width, true).View(), expected)
          << "%0*d " << width << " " << value;
      std::snprintf(expected, sizeof expected, "%*d", width, value);
      EXPECT_EQ(TextPiece().Int(value, width).View(), expected)
          << "%*d " << width << " " << value;
    }
    std::snprintf(expected, sizeof expected, "%+dx", value);
    EXPECT_EQ(TextPiece().Int(value, 0, false, true).Char('x').View(),
              expected);
    std::snprintf(expected, sizeof expected, "%02d", value);
    EXPECT_EQ(TextPiece().Int(value, 2, true).View(), expected);
  }
}

}  // namespace
}  // namespace nv_fmt::internal
