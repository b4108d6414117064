#include "download/content_hash.h"

#include <gmock/gmock.h>

namespace zt_transfers::test {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

std::vector<Chunk> chunksAt(std::initializer_list<std::uint64_t> offsets) {
  std::vector<Chunk> chunks;
  for (const std::uint64_t offset : offsets) {
    Chunk chunk;
    chunk.data.reset(new char[10]);
    chunk.size = 10;
    chunk.offset = offset;
    chunks.push_back(std::move(chunk));
  }
  return chunks;
}

TEST(HashQueue, KeepsInMemoryWhatComesInOrder) {
  CHashQueue queue;
  auto chunks = chunksAt({0, 10});
  EXPECT_TRUE(queue.add(chunks, 20));
  EXPECT_THAT(chunks, IsEmpty());
  EXPECT_THAT(queue.take(), SizeIs(2));
  chunks = chunksAt({20});
  EXPECT_FALSE(queue.add(chunks, 30));  // somebody is at it
  EXPECT_TRUE(queue.done());
  EXPECT_EQ(queue.take().front().end, 30U);
  EXPECT_FALSE(queue.done());
  EXPECT_TRUE(queue.idle());
}

TEST(HashQueue, HasTheRestReadBackAndNothingInMemoryWaitForThat) {
  CHashQueue queue;
  auto chunks = chunksAt({20});
  EXPECT_FALSE(queue.add(chunks, 0));  // there is a gap before it
  EXPECT_THAT(chunks, SizeIs(1));
  chunks = chunksAt({0, 10});
  EXPECT_TRUE(queue.add(chunks, 30));
  chunks = chunksAt({30});
  EXPECT_FALSE(queue.add(chunks, 40));
  EXPECT_THAT(chunks, SizeIs(1));
  EXPECT_TRUE(queue.take().back().inMemory());
  const auto rest = queue.take();
  ASSERT_THAT(rest, SizeIs(1));
  EXPECT_FALSE(rest.front().inMemory());
  EXPECT_EQ(rest.front().end, 40U);
}

}  // namespace
}  // namespace zt_transfers::test
