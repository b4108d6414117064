#include "upload/part_plan.h"

#include <algorithm>

#include "engine/upload_session.h"

namespace zt_transfers {
namespace {

constexpr std::uint64_t kMiB = 1024ULL * 1024;
// Small enough that little is sent again after an interruption, large enough that requests do not
// count. Stores take parts from 5 MiB on.
constexpr std::uint64_t kUsual = 16 * kMiB;

}  // namespace

std::uint64_t partSizeFor(std::uint64_t size, std::uint64_t wanted) {
  constexpr std::uint64_t kMax = UploadSession::kMaxParts;
  const std::uint64_t least = size / kMax + (size % kMax == 0 ? 0 : 1);
  if (wanted >= least && wanted != 0) {
    return wanted;
  }
  // Rounded up to whole mebibytes, which servers and disks like better.
  const std::uint64_t rounded = least / kMiB * kMiB + (least % kMiB == 0 ? 0 : kMiB);
  return wanted == 0 ? std::max(kUsual, rounded) : rounded;
}

}  // namespace zt_transfers
