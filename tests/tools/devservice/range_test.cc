#include "devservice/range.h"

#include <gtest/gtest.h>

namespace zantrio::devservice {

namespace {

using Kind = RangeRequest::Kind;

void expectPart(const std::string& header, std::uint64_t first, std::uint64_t last) {
  const RangeRequest range = parseRange(header, 100);
  ASSERT_EQ(range.kind, Kind::kPart) << header;
  EXPECT_EQ(range.part.first, first) << header;
  EXPECT_EQ(range.part.last, last) << header;
}

}  // namespace

TEST(ParseRange, GivesTheBytesThatAreAskedFor) {
  expectPart("bytes=0-0", 0, 0);
  expectPart("bytes=10-19", 10, 19);
  expectPart("bytes=90-", 90, 99);
  expectPart("bytes=-10", 90, 99);
  expectPart("bytes=-1000", 0, 99);
  expectPart("bytes=50-1000", 50, 99);
}

TEST(ParseRange, RefusesWhatBeginsBehindTheEnd) {
  EXPECT_EQ(parseRange("bytes=100-", 100).kind, Kind::kUnsatisfiable);
  EXPECT_EQ(parseRange("bytes=-0", 100).kind, Kind::kUnsatisfiable);
  EXPECT_EQ(parseRange("bytes=0-", 0).kind, Kind::kUnsatisfiable);
}

TEST(ParseRange, ServesTheWholeFileForWhatItDoesNotUnderstand) {
  for (const char* header : {"", "bytes=", "bytes=-", "bytes=a-b", "bytes=5-2", "lines=1-2",
                             "bytes=0-1,5-6", "bytes=99999999999999999999-"}) {
    EXPECT_EQ(parseRange(header, 100).kind, Kind::kWhole) << header;
  }
}

}  // namespace zantrio::devservice
