#include "download/target_path.h"

#include <gtest/gtest.h>

#include "engine/download_resume.h"

namespace zt_transfers::test {
namespace {

TEST(CountedName, PutsTheNumberBeforeTheEnding) {
  EXPECT_EQ(countedName("a.txt", 0), "a.txt");
  EXPECT_EQ(countedName("a.txt", 1), "a (1).txt");
  EXPECT_EQ(countedName("a.tar.gz", 12), "a.tar (12).gz");
  EXPECT_EQ(countedName(".hidden", 1), ".hidden (1)");
  EXPECT_EQ(countedName("plain", 3), "plain (3)");
}

TEST(CountedName, StaysWithinWhatFileSystemsTake) {
  const std::string name = std::string(250, 'n') + ".text";
  EXPECT_EQ(countedName(name, 1), std::string(246, 'n') + " (1).text");
  EXPECT_EQ(countedName("a." + std::string(253, 'e'), 1).size(), 255U);
}

TEST(PartialName, IsHiddenShortAndOneForEachKey) {
  const std::string name(255, 'n');
  EXPECT_EQ(partialName(name, "key").front(), '.');
  EXPECT_LE(partialName(name, "key").size(), 120U);
  EXPECT_EQ(partialName(name, "key"), partialName(name, "key"));
  EXPECT_NE(partialName(name, "key"), partialName(name, "other"));
}

TEST(ByteSpans, JoinWhateverTheOrder) {
  ByteSpans spans;
  for (const ByteSpan span : {ByteSpan{20, 30}, ByteSpan{0, 5}, ByteSpan{40, 50}, ByteSpan{5, 10},
                              ByteSpan{25, 45}, ByteSpan{7, 7}}) {
    addSpan(spans, span);
  }
  EXPECT_EQ(spans, (ByteSpans{{0, 10}, {20, 50}}));
  EXPECT_EQ(lengthOf(spans), 40U);
  addSpan(spans, {0, 60});
  EXPECT_EQ(spans, (ByteSpans{{0, 60}}));
}

}  // namespace
}  // namespace zt_transfers::test
