#include "engine/upload_session.h"

#include <algorithm>

namespace zt_transfers {

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

}  // namespace zt_transfers
