// The cost of a queue of a million files: time to queue, start, list and cancel it, and memory per
// waiting file. Usage: bench_queue [FILES] [Google Benchmark's options].
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "base/wide_bytes.h"
#include "sandbox.h"
#include "zt_transfers/download_manager.h"
#include "zt_transfers/global_config.h"

namespace {

using zt_transfers::CDownloadManager;
using Clock = std::chrono::steady_clock;

std::int64_t files = 1'000'000;
constexpr std::int64_t kPortion = 10'000;  // files in one call, as a page would

double secondsSince(Clock::time_point begin) {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

// Resident memory of this process, bytes.
double memory() {
  std::ifstream status("/proc/self/statm");
  double total = 0;
  double resident = 0;
  status >> total >> resident;
  return resident * static_cast<double>(::sysconf(_SC_PAGESIZE));
}

// As the service's files: an id, a path, and a signed URL of about 400 bytes.
std::vector<CDownloadManager::FileDownloadDetails> portion(std::int64_t from) {
  static const std::string signature(300, 's');
  std::vector<CDownloadManager::FileDownloadDetails> details(kPortion);
  for (std::int64_t at = 0; at < kPortion; ++at) {
    const std::string number = std::to_string(from + at);
    auto& file = details[static_cast<std::size_t>(at)];
    file.fileId = "5f0c2a7e-6c1b-4a53-9f3e-" + std::string(12 - number.size(), '0') + number;
    file.path = L"Photos/2024/Day 7/IMG_" + std::to_wstring(from + at) + L".jpeg";
    file.size = 3'000'000;
    file.md5Digest = "d41d8cd98f00b204e9800998ecf8427e";
    file.url =
        "https://storage.example.com/bucket/objects/" + file.fileId + "?X-Signature=" + signature;
  }
  return details;
}

std::uintmax_t sizeOnDisk(const std::filesystem::path& folder) {
  std::uintmax_t size = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    size += entry.file_size();
  }
  return size;
}

// A paused group of `files` files, queued once and used by all measurements in order.
struct Stage {
  zt_transfers::test::CSandbox sandbox;
  std::unique_ptr<CDownloadManager> manager;
  std::int32_t group = -1;

  Stage() {
    zt_transfers::CZtTransfersGlobalConfig::getInstance()->setAppFilesPath(
        zt_transfers::widened(sandbox.folder().string()));
  }
};

std::unique_ptr<Stage> stage;

void queue(benchmark::State& state) {
  stage = std::make_unique<Stage>();
  stage->manager = std::make_unique<CDownloadManager>();
  stage->manager->startup();
  stage->group = stage->manager->createGroup("bucket", "share", "token", 0, L"/tmp/downloads");
  stage->manager->pauseGroup(stage->group);
  ::malloc_trim(0);
  const double before = memory();
  double calling = 0;
  double longest = 0;
  for (auto _ : state) {
    for (std::int64_t from = 0; from < files; from += kPortion) {
      const auto details = portion(from);
      const auto begin = Clock::now();
      stage->manager->queueFiles(stage->group, details);
      const double took = secondsSince(begin);
      calling += took;
      longest = std::max(longest, took);
    }
    state.SetIterationTime(calling);
  }
  const double peak = memory();
  const auto begin = Clock::now();
  stage->manager->shutdown();  // returns when everything is on disk
  state.counters["files/s"] = static_cast<double>(files) / calling;
  state.counters["longest_call_ms"] = longest * 1e3;
  state.counters["durable_after_s"] = secondsSince(begin);
  state.counters["peak_B/file"] = (peak - before) / static_cast<double>(files);
  state.counters["disk_B/file"] =
      static_cast<double>(sizeOnDisk(stage->sandbox.folder())) / static_cast<double>(files);
  stage->manager.reset();
  ::malloc_trim(0);
}

void start(benchmark::State& state) {
  double before = 0;
  for (auto _ : state) {
    stage->manager.reset();
    stage->manager = std::make_unique<CDownloadManager>();
    ::malloc_trim(0);
    before = memory();
    const auto begin = Clock::now();
    stage->manager->startup();
    state.SetIterationTime(secondsSince(begin));
  }
  std::vector<CDownloadManager::GroupState> groups;
  stage->manager->fetchGroupsInfo(groups);
  if (groups.size() != 1 || groups[0].bytesTotal != 3'000'000 * static_cast<std::uint64_t>(files)) {
    state.SkipWithError("the group did not come back");
  }
  ::malloc_trim(0);
  state.counters["B/waiting_file"] = (memory() - before) / static_cast<double>(files);
}

void fetchGroupsInfo(benchmark::State& state) {
  std::vector<CDownloadManager::GroupState> groups;
  for (auto _ : state) {
    stage->manager->fetchGroupsInfo(groups);
    benchmark::DoNotOptimize(groups.data());
  }
}

// Calls of the page with a million files in the group.
void pauseAndResume(benchmark::State& state) {
  for (auto _ : state) {
    stage->manager->pauseGroup(stage->group);
  }
}

void queueOneAgain(benchmark::State& state) {
  const auto details = portion(files / 2);
  const std::vector one{details[7]};
  for (auto _ : state) {
    stage->manager->queueFiles(stage->group, one);
  }
}

void cancel(benchmark::State& state) {
  for (auto _ : state) {
    const auto begin = Clock::now();
    stage->manager->cancelGroup(stage->group);
    state.SetIterationTime(secondsSince(begin));
  }
  const auto begin = Clock::now();
  const auto other = stage->manager->createGroup("bucket", "share", "token", 0, L"/tmp/other");
  stage->manager->cancelGroup(other);
  state.counters["next_call_ms"] = secondsSince(begin) * 1e3;
  stage.reset();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::atoll(argv[1]) > 0) {
    files = std::max<std::int64_t>(std::atoll(argv[1]), kPortion) / kPortion * kPortion;
    --argc;
    ++argv;
  }
  std::printf("%lld files of one group\n", static_cast<long long>(files));
  // In order: each continues with the state of the one before.
  benchmark::RegisterBenchmark("queueFiles", queue)
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("startup", start)
      ->Iterations(3)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("fetchGroupsInfo", fetchGroupsInfo)->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("pauseGroup", pauseAndResume)->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("queueFiles_of_one", queueOneAgain)->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("cancelGroup", cancel)
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
