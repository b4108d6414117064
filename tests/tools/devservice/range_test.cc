#include "devservice/range.h"

#include <gtest/gtest.h>

namespace zantrio::devservice {

TEST(ParseRange, ReturnsTheRequestedBytesOrTheWholeFileOrNothing) {
  using Kind = RangeRequest::Kind;
  struct Case {
    const char* header;
    Kind kind;
    std::uint64_t first = 0;
    std::uint64_t last = 0;
  };
  for (const auto& [header, kind, first, last] :
       std::initializer_list<Case>{{"bytes=0-0", Kind::kPart, 0, 0},
                                   {"bytes=10-19", Kind::kPart, 10, 19},
                                   {"bytes=90-", Kind::kPart, 90, 99},
                                   {"bytes=-10", Kind::kPart, 90, 99},
                                   {"bytes=-1000", Kind::kPart, 0, 99},
                                   {"bytes=50-1000", Kind::kPart, 50, 99},
                                   {"bytes=100-", Kind::kUnsatisfiable},
                                   {"bytes=-0", Kind::kUnsatisfiable},
                                   {"", Kind::kWhole},
                                   {"bytes=", Kind::kWhole},
                                   {"bytes=-", Kind::kWhole},
                                   {"bytes=a-b", Kind::kWhole},
                                   {"bytes=5-2", Kind::kWhole},
                                   {"lines=1-2", Kind::kWhole},
                                   {"bytes=0-1,5-6", Kind::kWhole},
                                   {"bytes=99999999999999999999-", Kind::kWhole}}) {
    const RangeRequest range = parseRange(header, 100);
    EXPECT_EQ(range.kind, kind) << header;
    EXPECT_EQ(range.part.first, first) << header;
    EXPECT_EQ(range.part.last, last) << header;
  }
  EXPECT_EQ(parseRange("bytes=0-", 0).kind, Kind::kUnsatisfiable);
}

}  // namespace zantrio::devservice
