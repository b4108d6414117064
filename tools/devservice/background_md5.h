#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <semaphore>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "devservice/md5.h"

namespace zantrio::devservice {

// Computes MD5 on a thread of its own while its user reads and writes, because for large bodies the
// digest takes longest. The user fills one buffer after the other:
//   auto buffer = md5.nextBuffer();  ...fill it...  md5.hash(the filled part);
// A buffer passed to hash may still be read until the next call of nextBuffer.
// Thread: one user. Destruction ends the thread, whether finished or not.
class CBackgroundMd5 {
 public:
  explicit CBackgroundMd5(std::size_t bufferSize);
  ~CBackgroundMd5();
  CBackgroundMd5(const CBackgroundMd5&) = delete;
  CBackgroundMd5& operator=(const CBackgroundMd5&) = delete;

  // Blocks while all buffers wait to be hashed.
  std::span<char> nextBuffer();
  void hash(std::span<const char> filled);
  // The digest of all data, as 16 raw bytes. Called once, at the end.
  std::string finish();

 private:
  static constexpr std::size_t kBuffers = 4;

  void run();
  void end();

  std::array<std::vector<char>, kBuffers> buffers_;
  std::array<std::span<const char>, kBuffers> filled_;
  std::counting_semaphore<kBuffers> free_{kBuffers};
  std::counting_semaphore<kBuffers + 1> waiting_{0};
  std::atomic<std::size_t> handedOver_ = 0;
  CMd5 md5_;  // used by the thread until it ends, then by the user
  std::jthread thread_;
};

}  // namespace zantrio::devservice
