#pragma once

#include <cstddef>
#include <vector>

#include "hash/md5_blocks.h"

namespace zt_transfers {

// Blocks of a message, to be worked into its state.
struct Md5Piece {
  Md5State* state = nullptr;
  const unsigned char* data = nullptr;
  std::size_t blocks = 0;
};

// Works each piece into its state: kMd5Lanes pieces at most, of different messages. As long as
// three or more are left they are worked through together.
void addInLockstep(std::vector<Md5Piece> pieces);

}  // namespace zt_transfers
