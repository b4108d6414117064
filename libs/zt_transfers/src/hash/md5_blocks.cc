#include "hash/md5_blocks.h"

#include <bit>
#include <cstring>
#include <utility>

static_assert(std::endian::native == std::endian::little, "words are read as they lie in memory");

namespace zt_transfers {
namespace {

// A word of each lane; the compiler makes of it what the processor has.
using Lanes = std::uint32_t __attribute__((vector_size(kMd5Lanes * sizeof(std::uint32_t))));

constexpr std::size_t kWords = 16;  // of a block
constexpr std::size_t kSteps = 64;

// The sines of RFC 1321: floor(abs(sin(i + 1)) * 2^32).
constexpr std::array<std::uint32_t, kSteps> kSines{
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501,
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821,
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8,
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A,
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70,
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665,
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1,
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391};

constexpr std::size_t kRoundSteps = 16;
constexpr std::array<std::array<int, 4>, 4> kShifts{
    {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}}};

constexpr std::size_t wordOf(std::size_t step) {
  constexpr std::array<std::size_t, 4> kStride{1, 5, 3, 7};
  constexpr std::array<std::size_t, 4> kFirst{0, 1, 5, 0};
  const std::size_t round = step / kRoundSteps;
  return (kStride[round] * step + kFirst[round]) % kWords;
}

template <class Word>
struct Registers {
  Word a;
  Word b;
  Word c;
  Word d;
};

template <std::size_t kStep, class Word>
[[gnu::always_inline]] inline void addStep(Registers<Word>& r, const Word (&words)[kWords]) {
  constexpr std::size_t kRound = kStep / kRoundSteps;
  constexpr int kShift = kShifts[kRound][kStep % 4];
  // Written so that as little as possible comes after `b`, for which every step has to wait.
  Word mixed = r.a + words[wordOf(kStep)] + kSines[kStep];
  if constexpr (kRound == 0) {
    mixed += r.d ^ (r.b & (r.c ^ r.d));
  } else if constexpr (kRound == 1) {
    mixed += r.c & ~r.d;
    mixed += r.b & r.d;
  } else if constexpr (kRound == 2) {
    mixed += r.b ^ (r.c ^ r.d);
  } else {
    mixed += r.c ^ (r.b | ~r.d);
  }
  mixed = (mixed << kShift) | (mixed >> (32 - kShift));
  r.a = r.d;
  r.d = r.c;
  r.c = r.b;
  r.b += mixed;
}

template <class Word, std::size_t... kStep>
[[gnu::always_inline]] inline void addSteps(Registers<Word>& r, const Word (&words)[kWords],
                                            std::index_sequence<kStep...> /*steps*/) {
  (addStep<kStep>(r, words), ...);
}

template <class Word>
[[gnu::always_inline]] inline void addBlock(Registers<Word>& r, const Word (&words)[kWords]) {
  const Registers<Word> before = r;
  addSteps(r, words, std::make_index_sequence<kSteps>());
  r.a += before.a;
  r.b += before.b;
  r.c += before.c;
  r.d += before.d;
}

// Turns a block of each lane, in which its words follow each other, into words of all lanes.
[[gnu::always_inline]] inline void loadWords(
    const std::array<const unsigned char*, kMd5Lanes>& data, std::size_t offset,
    Lanes (&words)[kWords]) {
  for (std::size_t lane = 0; lane < kMd5Lanes; ++lane) {
    std::array<std::uint32_t, kWords> block;
    std::memcpy(block.data(), data[lane] + offset, kMd5BlockSize);
    for (std::size_t word = 0; word < kWords; ++word) {
      words[word][lane] = block[word];
    }
  }
}

[[gnu::always_inline]] inline void addToLanes(
    const std::array<Md5State*, kMd5Lanes>& states,
    const std::array<const unsigned char*, kMd5Lanes>& data, std::size_t blocks) {
  Registers<Lanes> r{};
  for (std::size_t lane = 0; lane < kMd5Lanes; ++lane) {
    const Md5State& state = *states[lane];
    r.a[lane] = state[0];
    r.b[lane] = state[1];
    r.c[lane] = state[2];
    r.d[lane] = state[3];
  }
  for (std::size_t block = 0; block < blocks; ++block) {
    Lanes words[kWords];
    loadWords(data, block * kMd5BlockSize, words);
    addBlock(r, words);
  }
  for (std::size_t lane = 0; lane < kMd5Lanes; ++lane) {
    *states[lane] = {r.a[lane], r.b[lane], r.c[lane], r.d[lane]};
  }
}

#if defined(__x86_64__)

// Here all lanes are one register, and a rotation or three operations on bits are one instruction.
[[gnu::target("avx512vl")]] void addToLanesAvx512(
    const std::array<Md5State*, kMd5Lanes>& states,
    const std::array<const unsigned char*, kMd5Lanes>& data, std::size_t blocks) {
  addToLanes(states, data, blocks);
}

#endif

}  // namespace

void addMd5Blocks(Md5State& state, const unsigned char* data, std::size_t blocks) {
  Registers<std::uint32_t> r{state[0], state[1], state[2], state[3]};
  for (; blocks > 0; --blocks, data += kMd5BlockSize) {
    std::uint32_t words[kWords];
    std::memcpy(words, data, kMd5BlockSize);
    addBlock(r, words);
  }
  state = {r.a, r.b, r.c, r.d};
}

void addMd5Blocks(const std::array<Md5State*, kMd5Lanes>& states,
                  const std::array<const unsigned char*, kMd5Lanes>& data, std::size_t blocks) {
#if defined(__x86_64__)
  if (__builtin_cpu_supports("avx512vl") != 0) {
    addToLanesAvx512(states, data, blocks);
    return;
  }
#endif
  addToLanes(states, data, blocks);
}

}  // namespace zt_transfers
