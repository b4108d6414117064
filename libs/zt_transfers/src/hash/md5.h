#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hash/md5_blocks.h"
#include "hash/md5_combiner.h"

namespace zt_transfers {

// An MD5 digest, computed piece by piece. Large pieces are worked through together with those that
// other threads add at the same time (CMd5Combiner), which takes a fraction of the processor's
// time. Thread: one at a time.
class CMd5 {
 public:
  // The digests of messages that are in memory, in their order. They are worked through together.
  static std::vector<std::string> ofEach(const std::vector<std::string_view>& messages);

  void add(const void* data, std::size_t size);
  // The digest in lower-case hexadecimal. Ends the computation.
  std::string finish();

 private:
  const unsigned char* completeBlock(const unsigned char* data, std::size_t& size);
  void addBlocks(const unsigned char* data, std::size_t blocks);

  Md5State state_ = kMd5Begin;
  std::array<unsigned char, kMd5BlockSize> begun_{};  // the block that is not complete yet
  std::uint64_t size_ = 0;                            // bytes in all
  std::optional<CMd5Combiner::CMember> member_;       // from its first large piece on
};

}  // namespace zt_transfers
