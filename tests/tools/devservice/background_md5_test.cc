#include "devservice/background_md5.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace zantrio::devservice {

namespace {

std::string digestOf(const std::string& content, std::size_t pieceSize) {
  CBackgroundMd5 md5(1000);
  for (std::size_t at = 0; at < content.size();) {
    const auto buffer = md5.nextBuffer();
    const std::size_t count = std::min({pieceSize, buffer.size(), content.size() - at});
    std::memcpy(buffer.data(), content.data() + at, count);
    md5.hash(buffer.first(count));
    at += count;
  }
  return toHex(md5.finish());
}

}  // namespace

TEST(BackgroundMd5, DoesNotDependOnThePieces) {
  std::string content(100'000, '\0');
  for (std::size_t i = 0; i < content.size(); ++i) {
    content[i] = static_cast<char>(i * 31 % 251);
  }
  CMd5 expected;
  expected.update(content.data(), content.size());
  const std::string digest = toHex(expected.finish());
  for (const std::size_t pieceSize : {1, 7, 999, 1000}) {
    EXPECT_EQ(digestOf(content, pieceSize), digest) << pieceSize;
  }
  EXPECT_EQ(digestOf("", 1), "d41d8cd98f00b204e9800998ecf8427e");
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
