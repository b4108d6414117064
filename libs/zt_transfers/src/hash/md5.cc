#include "hash/md5.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "hash/md5_lockstep.h"

namespace zt_transfers {
namespace {

// Smaller amounts are hashed before another thread could join.
constexpr std::size_t kWorthSharing = 1024;  // blocks

std::string hexadecimal(const Md5State& state) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint32_t word : state) {
    for (int shift = 0; shift < 32; shift += 8) {
      text.push_back(kDigits[(word >> (shift + 4)) & 0xF]);
      text.push_back(kDigits[(word >> shift) & 0xF]);
    }
  }
  return text;
}

}  // namespace

std::vector<std::string> CMd5::ofEach(const std::vector<std::string_view>& messages) {
  std::vector<CMd5> digests(messages.size());
  std::vector<Md5Piece> pieces;
  for (std::size_t at = 0; at < messages.size(); ++at) {
    const auto* data = reinterpret_cast<const unsigned char*>(messages[at].data());
    const std::size_t blocks = messages[at].size() / kMd5BlockSize;
    pieces.push_back({.state = &digests[at].state_, .data = data, .blocks = blocks});
    digests[at].size_ = blocks * kMd5BlockSize;
    if (pieces.size() == kMd5Lanes || at + 1 == messages.size()) {
      addInLockstep(std::exchange(pieces, {}));
    }
  }
  std::vector<std::string> texts;
  for (std::size_t at = 0; at < messages.size(); ++at) {
    const std::string_view rest = messages[at].substr(digests[at].size_);
    digests[at].add(rest.data(), rest.size());
    texts.push_back(digests[at].finish());
  }
  return texts;
}

void CMd5::add(const void* data, std::size_t size) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  if (size_ % kMd5BlockSize != 0) {
    bytes = completeBlock(bytes, size);
  }
  const std::size_t blocks = size / kMd5BlockSize;
  if (blocks > 0) {
    addBlocks(bytes, blocks);
  }
  const std::size_t rest = size % kMd5BlockSize;
  if (rest > 0) {
    std::memcpy(begun_.data() + size_ % kMd5BlockSize, bytes + blocks * kMd5BlockSize, rest);
  }
  size_ += size;
}

// Takes what the begun block lacks; `size` is what is left then, and the result is where.
const unsigned char* CMd5::completeBlock(const unsigned char* data, std::size_t& size) {
  const std::size_t begun = size_ % kMd5BlockSize;
  const std::size_t taken = std::min(size, kMd5BlockSize - begun);
  std::memcpy(begun_.data() + begun, data, taken);
  if (begun + taken < kMd5BlockSize) {
    size_ += taken;
    size = 0;
    return data;
  }
  addMd5Blocks(state_, begun_.data(), 1);
  size_ += taken;
  size -= taken;
  return data + taken;
}

void CMd5::addBlocks(const unsigned char* data, std::size_t blocks) {
  if (blocks < kWorthSharing) {
    addMd5Blocks(state_, data, blocks);
    return;
  }
  if (!member_) {
    member_.emplace(CMd5Combiner::shared());
  }
  member_->add(state_, data, blocks);
}

std::string CMd5::finish() {
  const std::uint64_t bits = size_ * 8;
  constexpr std::size_t kLengthAt = kMd5BlockSize - sizeof bits;
  static constexpr unsigned char kPadding[kMd5BlockSize] = {0x80};
  const std::size_t begun = size_ % kMd5BlockSize;
  add(kPadding, (begun < kLengthAt ? kLengthAt : kMd5BlockSize + kLengthAt) - begun);
  add(&bits, sizeof bits);
  member_.reset();
  return hexadecimal(state_);
}

}  // namespace zt_transfers
