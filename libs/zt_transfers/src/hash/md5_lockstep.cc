#include "hash/md5_lockstep.h"

#include <algorithm>
#include <array>

namespace zt_transfers {
namespace {

// Two messages take longer together than one after the other.
constexpr std::size_t kWorthTogether = 3;

}  // namespace

void addInLockstep(std::vector<Md5Piece> pieces) {
  while (pieces.size() >= kWorthTogether) {
    Md5State unused{};
    std::array<Md5State*, kMd5Lanes> states{};
    std::array<const unsigned char*, kMd5Lanes> data{};
    std::size_t blocks = pieces.front().blocks;
    for (std::size_t lane = 0; lane < kMd5Lanes; ++lane) {
      const bool used = lane < pieces.size();
      states[lane] = used ? pieces[lane].state : &unused;
      data[lane] = pieces[used ? lane : 0].data;
      blocks = used ? std::min(blocks, pieces[lane].blocks) : blocks;
    }
    addMd5Blocks(states, data, blocks);
    for (Md5Piece& piece : pieces) {
      piece.data += blocks * kMd5BlockSize;
      piece.blocks -= blocks;
    }
    std::erase_if(pieces, [](const Md5Piece& piece) { return piece.blocks == 0; });
  }
  for (const Md5Piece& piece : pieces) {
    addMd5Blocks(*piece.state, piece.data, piece.blocks);
  }
}

}  // namespace zt_transfers
