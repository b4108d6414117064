#include "devservice/background_md5.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zantrio::devservice {

TEST(BackgroundMd5, DoesNotDependOnThePieces) {
  std::string content(100'000, '\0');
  std::generate(content.begin(), content.end(),
                [i = 0]() mutable { return static_cast<char>(i++ * 31 % 251); });
  CMd5 expected;
  expected.update(content.data(), content.size());
  const std::string digest = expected.finish();
  for (const std::size_t pieceSize : {1, 7, 999, 1000}) {
    CBackgroundMd5 md5(1000);
    for (std::size_t at = 0; at < content.size(); at += pieceSize) {
      const auto buffer = md5.nextBuffer();
      md5.hash(buffer.first(content.copy(buffer.data(), pieceSize, at)));
    }
    EXPECT_EQ(md5.finish(), digest) << pieceSize;
  }
  EXPECT_EQ(toHex(CBackgroundMd5(1000).finish()), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(BackgroundMd5, CanBeDestroyedAtAnyPoint) {
  for (int i = 0; i < 200; ++i) {
    CBackgroundMd5 md5(64);
    for (int piece = 0; piece < i % 7; ++piece) {
      md5.hash(md5.nextBuffer());
    }
    if (i % 2 == 0) {
      md5.nextBuffer();
    }
  }
}

}  // namespace zantrio::devservice
