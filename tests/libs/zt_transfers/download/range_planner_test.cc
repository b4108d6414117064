#include "download/range_planner.h"

#include <gmock/gmock.h>

namespace zt_transfers::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(MissingSpans, AreTheGapsAndTheEnd) {
  EXPECT_THAT(missingSpans({}, 10), ElementsAre(ByteSpan{0, 10}));
  EXPECT_THAT(missingSpans({{2, 4}, {6, 8}}, 10),
              ElementsAre(ByteSpan{0, 2}, ByteSpan{4, 6}, ByteSpan{8, 10}));
  EXPECT_THAT(missingSpans({{0, 10}}, 10), IsEmpty());
  EXPECT_THAT(missingSpans({{0, 4}, {12, 14}}, 10), ElementsAre(ByteSpan{4, 10}));
}

TEST(MissingSpans, AreTakenFromTheFirstOnInPieces) {
  ByteSpans missing{{0, 5}, {8, 10}};
  EXPECT_EQ(takeFirst(missing, 3), (ByteSpan{0, 3}));
  EXPECT_EQ(takeFirst(missing, 3), (ByteSpan{3, 5}));
  EXPECT_EQ(takeFirst(missing, 3), (ByteSpan{8, 10}));
  EXPECT_THAT(missing, IsEmpty());
}

}  // namespace
}  // namespace zt_transfers::test
