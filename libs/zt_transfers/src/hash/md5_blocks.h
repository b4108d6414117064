#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zt_transfers {

// MD5's state between two blocks.
using Md5State = std::array<std::uint32_t, 4>;

inline constexpr std::size_t kMd5BlockSize = 64;  // bytes
inline constexpr Md5State kMd5Begin{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};

// So many messages can be worked through together. Each step of MD5 needs the one before, so a
// processor that hashes one message mostly waits; eight at once take one and a half to two and a
// half times as long.
inline constexpr std::size_t kMd5Lanes = 8;

// Works `blocks` blocks of 64 bytes into one state.
void addMd5Blocks(Md5State& state, const unsigned char* data, std::size_t blocks);

// The same for eight messages. Pointers may be the same where fewer are wanted.
void addMd5Blocks(const std::array<Md5State*, kMd5Lanes>& states,
                  const std::array<const unsigned char*, kMd5Lanes>& data, std::size_t blocks);

}  // namespace zt_transfers
