#include "download/check_content.h"

#include <string>
#include <utility>

#include "download/file_trouble.h"

namespace zt_transfers {

std::optional<AttemptOutcome> checkContent(CPartialFile& file, AttemptProgress& progress,
                                           std::uint64_t size) {
  std::optional<std::string> problem;
  const auto trouble = troubleOf([&] {
    problem = file.verify(size);
    if (problem) {
      file.discardNow();
      progress.setResume({});
    }
  });
  if (trouble || !problem) {
    return trouble;
  }
  return AttemptOutcome::retry(std::move(*problem), failure::kWrongDigest);
}

}  // namespace zt_transfers
