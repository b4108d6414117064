#include "download/small_files.h"

#include <chrono>
#include <memory>
#include <numeric>
#include <string_view>

#include "download/check_content.h"
#include "download/file_trouble.h"
#include "hash/md5.h"

namespace zt_transfers {
namespace {

// A multiple of those that are hashed together.
constexpr std::size_t kMostFiles = 4 * kMd5Lanes;
constexpr std::size_t kMostBytes = kMd5Lanes * CChunkPool::kLargest;
constexpr std::chrono::milliseconds kGatherLimit{2};

void write(CSmallFiles::Arrived& file) {
  CPartialFile& partial = *file.landing.file;
  file.trouble = troubleOf([&] {
    partial.restart(file.validator, file.size);
    if (file.content.size != 0) {
      partial.write(0, file.content.data.get(), file.content.size);
    }
  });
  // Also of what could only be begun, so that it is found again.
  file.landing.progress->setResume(partial.resume());
}

}  // namespace

void CSmallFiles::add(Arrived file, TimePoint now) {
  if (waiting_.empty()) {
    since_ = now;
  }
  waiting_.push_back(std::move(file));
  if (enough()) {
    begin();
  }
}

std::optional<TimePoint> CSmallFiles::turn(TimePoint now) {
  if (!waiting_.empty() && now - since_ >= kGatherLimit) {
    begin();
  }
  return waiting_.empty() ? std::nullopt : std::optional(since_ + kGatherLimit);
}

bool CSmallFiles::enough() const {
  const std::size_t bytes =
      std::accumulate(waiting_.begin(), waiting_.end(), std::size_t{0},
                      [](std::size_t sum, const Arrived& file) { return sum + file.content.size; });
  return waiting_.size() == kMostFiles || bytes >= kMostBytes;
}

void CSmallFiles::begin() {
  pool_.post([this, batch = std::make_shared<Batch>(std::exchange(waiting_, {}))] {
    finish(std::move(*batch));
  });
}

void CSmallFiles::finish(Batch batch) {
  std::vector<std::string_view> contents;
  for (Arrived& file : batch) {
    write(file);
    contents.emplace_back(file.content.data.get(), file.content.size);
  }
  std::vector<std::string> digests = CMd5::ofEach(contents);
  std::vector<AttemptEnd> failed;
  std::vector<CLander::Arrival> landing;
  for (std::size_t at = 0; at < batch.size(); ++at) {
    Arrived& file = batch[at];
    chunks_.giveBack(std::move(file.content));
    if (!file.trouble) {
      file.landing.file->setDigest(std::move(digests[at]));
      file.trouble = checkContent(*file.landing.file, *file.landing.progress, file.size);
    }
    if (file.trouble) {
      failed.push_back({file.landing.job, std::move(*file.trouble)});
    } else {
      landing.push_back(std::move(file.landing));
    }
  }
  if (!failed.empty()) {
    failed_(failed);
  }
  lander_.land(std::move(landing));
}

}  // namespace zt_transfers
