#include "hash/md5.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <random>
#include <thread>
#include <vector>

#include "hash/md5_combiner.h"

namespace zt_transfers::test {
namespace {

using Bytes = std::vector<unsigned char>;

Bytes randomBytes(std::size_t size, unsigned seed) {
  std::mt19937 random(seed);
  Bytes bytes(size);
  std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<unsigned char>(random()); });
  return bytes;
}

std::string referenceDigest(const Bytes& bytes) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned length = 0;
  EXPECT_EQ(EVP_Digest(bytes.data(), bytes.size(), digest, &length, EVP_md5(), nullptr), 1);
  std::string text;
  for (unsigned at = 0; at < length; ++at) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", digest[at]);
    text += digits;
  }
  return text;
}

std::string digest(const Bytes& bytes, std::size_t piece) {
  CMd5 md5;
  for (std::size_t at = 0; at < bytes.size(); at += piece) {
    md5.add(bytes.data() + at, std::min(piece, bytes.size() - at));
  }
  return md5.finish();
}

TEST(Md5, IsThatOfTheStandardForEveryLengthAroundTheBlocksAndPieces) {
  EXPECT_EQ(CMd5().finish(), "d41d8cd98f00b204e9800998ecf8427e");
  for (std::size_t size = 0; size < 300; ++size) {
    const Bytes bytes = randomBytes(size, static_cast<unsigned>(size));
    for (const std::size_t piece : {1, 7, 63, 64, 65, 1000}) {
      EXPECT_EQ(digest(bytes, piece), referenceDigest(bytes)) << size << " in pieces of " << piece;
    }
  }
  const Bytes large = randomBytes(1'000'003, 1);
  EXPECT_EQ(digest(large, large.size()), referenceDigest(large));
  EXPECT_EQ(digest(large, 100'001), referenceDigest(large));
}

TEST(Md5, IsTheSameForMessagesThatAreWorkedThroughTogether) {
  std::vector<Bytes> messages;
  std::vector<std::string_view> texts;
  for (std::size_t count = 0; count < 40; ++count) {
    EXPECT_EQ(CMd5::ofEach(texts).size(), count);
    const std::size_t size = count * count * 37 % 3000;
    messages.push_back(randomBytes(size, static_cast<unsigned>(count)));
    texts.emplace_back(reinterpret_cast<const char*>(messages.back().data()), size);
  }
  const std::vector<std::string> digests = CMd5::ofEach(texts);
  for (std::size_t at = 0; at < messages.size(); ++at) {
    EXPECT_EQ(digests[at], referenceDigest(messages[at])) << at;
  }
}

TEST(Md5, CountsMoreBitsThanAWordHolds) {
  // The length in bits is part of what is hashed.
  CMd5 md5;
  EVP_MD_CTX* const reference = EVP_MD_CTX_new();
  EVP_DigestInit_ex(reference, EVP_md5(), nullptr);
  const Bytes zeros(16 << 20);
  for (int piece = 0; piece < 33; ++piece) {  // 528 MiB, more than 2^32 bits
    md5.add(zeros.data(), zeros.size());
    EVP_DigestUpdate(reference, zeros.data(), zeros.size());
  }
  unsigned char wanted[EVP_MAX_MD_SIZE];
  EVP_DigestFinal_ex(reference, wanted, nullptr);
  EVP_MD_CTX_free(reference);
  char first[9];
  std::snprintf(first, sizeof first, "%02x%02x%02x%02x", wanted[0], wanted[1], wanted[2],
                wanted[3]);
  EXPECT_EQ(md5.finish().substr(0, 8), first);
}

// Whatever the number and the lengths of the messages, and however they meet.
TEST(Md5Combiner, HashesEachOfManyThreadsMessagesAsIfItWereAlone) {
  for (const unsigned atWork : {1U, 3U}) {
    CMd5Combiner combiner(atWork);
    constexpr std::size_t kThreads = 13;
    std::vector<Bytes> messages;
    std::vector<Md5State> states(kThreads, kMd5Begin);
    for (unsigned number = 0; number < kThreads; ++number) {
      messages.push_back(randomBytes((20'000 + number % 3 * 999) * kMd5BlockSize, number));
    }
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < kThreads; ++number) {
      threads.emplace_back([&, number] {
        CMd5Combiner::CMember member(combiner);
        const std::size_t blocks = messages[number].size() / kMd5BlockSize;
        const std::size_t piece = 1000 + number % 5;
        for (std::size_t at = 0; at < blocks; at += piece) {
          member.add(states[number], messages[number].data() + at * kMd5BlockSize,
                     std::min(piece, blocks - at));
        }
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    for (std::size_t number = 0; number < kThreads; ++number) {
      Md5State alone = kMd5Begin;
      addMd5Blocks(alone, messages[number].data(), messages[number].size() / kMd5BlockSize);
      EXPECT_EQ(states[number], alone) << number;
    }
  }
}

}  // namespace
}  // namespace zt_transfers::test
