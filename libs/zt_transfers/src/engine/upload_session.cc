#include "engine/upload_session.h"

#include <algorithm>

namespace zt_transfers {
namespace {

constexpr std::uint64_t kMiB = 1024ULL * 1024;
// Small enough that an interruption costs little, large enough that the cost of a request does not
// count. Stores take parts of 5 MiB or more.
constexpr std::uint64_t kDefaultPartSize = 16 * kMiB;

}  // namespace

std::uint32_t UploadSession::partCount() const {
  return static_cast<std::uint32_t>((source.size + partSize - 1) / partSize);
}

ByteSpan UploadSession::spanOf(std::uint32_t number) const {
  const std::uint64_t begin = (number - 1) * partSize;
  return {begin, std::min(begin + partSize, source.size)};
}

std::uint64_t UploadSession::bytesSent() const {
  std::uint64_t bytes = 0;
  for (const SentPart& part : parts) {
    bytes += spanOf(part.number).length();
  }
  return bytes;
}

std::uint64_t partSizeFor(std::uint64_t size, std::uint64_t wanted) {
  constexpr std::uint64_t kMax = UploadSession::kMaxParts;
  const std::uint64_t min = size / kMax + (size % kMax == 0 ? 0 : 1);
  if (wanted >= min && wanted != 0) {
    return wanted;
  }
  // Rounded up to whole mebibytes.
  const std::uint64_t rounded = min / kMiB * kMiB + (min % kMiB == 0 ? 0 : kMiB);
  return wanted == 0 ? std::max(kDefaultPartSize, rounded) : rounded;
}

}  // namespace zt_transfers
