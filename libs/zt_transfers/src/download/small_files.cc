#include "download/small_files.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <numeric>
#include <string_view>
#include <utility>

#include "download/disk_verdict.h"
#include "hash/md5.h"

namespace zt_transfers {
namespace {

// A multiple of the number of files that are hashed together.
constexpr std::size_t kMaxFiles = 4 * kMd5Lanes;
constexpr std::size_t kMaxBytes = kMd5Lanes * CChunkPool::kLargest;
constexpr std::chrono::milliseconds kGatherLimit{2};

void write(CSmallFiles::Arrived& file) {
  CPartialFile& partial = *file.arrival.file;
  file.failure = failureOf([&] {
    partial.restart(file.validator, file.size);
    if (file.content.size != 0) {
      partial.write(0, file.content.data.get(), file.content.size);
    }
  });
  // Also after a failure, so that the next attempt finds the file.
  file.arrival.progress->setResume(partial.resume());
}

void hashAll(std::vector<CSmallFiles::Arrived>& files) {
  std::vector<CPartialFile*> hashed;
  std::vector<std::string_view> contents;
  for (const CSmallFiles::Arrived& file : files) {
    if (!file.failure && file.arrival.file->hashes()) {
      hashed.push_back(file.arrival.file.get());
      contents.emplace_back(file.content.data.get(), file.content.size);
    }
  }
  std::vector<std::string> digests = CMd5::ofEach(contents);
  for (std::size_t at = 0; at < hashed.size(); ++at) {
    hashed[at]->setDigest(std::move(digests[at]));
  }
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

std::optional<TimePoint> CSmallFiles::tick(TimePoint now) {
  if (!waiting_.empty() && now - since_ >= kGatherLimit) {
    begin();
  }
  return waiting_.empty() ? std::nullopt : std::optional(since_ + kGatherLimit);
}

bool CSmallFiles::enough() const {
  const std::size_t bytes =
      std::accumulate(waiting_.begin(), waiting_.end(), std::size_t{0},
                      [](std::size_t sum, const Arrived& file) { return sum + file.content.size; });
  return waiting_.size() == kMaxFiles || bytes >= kMaxBytes;
}

void CSmallFiles::begin() {
  pool_.post([this, batch = std::make_shared<Batch>(std::exchange(waiting_, {}))] {
    finish(std::move(*batch));
  });
}

void CSmallFiles::finish(Batch batch) {
  // No end is reported for discarded files.
  batch.erase(std::remove_if(batch.begin(), batch.end(),
                             [](const Arrived& file) { return file.arrival.file->discarded(); }),
              batch.end());
  for (Arrived& file : batch) {
    write(file);
  }
  hashAll(batch);
  std::vector<AttemptEnd> failed;
  std::vector<CFinalizer::Arrival> arrivals;
  for (Arrived& file : batch) {
    chunks_.giveBack(std::move(file.content));
    if (!file.failure) {
      file.failure = checkContent(*file.arrival.file, *file.arrival.progress, file.size);
    }
    if (file.failure) {
      failed.push_back({file.arrival.attemptId, std::move(*file.failure)});
    } else {
      arrivals.push_back(std::move(file.arrival));
    }
  }
  if (!failed.empty()) {
    failed_(failed);
  }
  finalizer_.finalize(std::move(arrivals));
}

}  // namespace zt_transfers
