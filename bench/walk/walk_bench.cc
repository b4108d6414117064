// Records per second of a folder walk, compared with `find -printf` printing the same facts about
// the same 100,000 files. Usage: bench_walk [FOLDER]; without one, a tree is made in memory.
#include <json/writer.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "files/folder_walk.h"
#include "support/temporary_folder.h"

namespace {

using zantrio::test::TemporaryFolder;

constexpr int kRounds = 11;

// 10 × 10 folders with 1,000 files each.
std::string makeTree(const TemporaryFolder& folder) {
  for (int i = 0; i < 100; ++i) {
    const std::string name = "Photos " + std::to_string(i / 10) + "/Day " + std::to_string(i % 10);
    const std::string path = folder.makeFolder(name);
    for (int j = 0; j < 1000; ++j) {
      const std::string file = path + "/IMG_2024 (" + std::to_string(j) + ").jpeg";
      if (mknod(file.c_str(), S_IFREG | 0600, 0) != 0) {
        throw std::runtime_error("cannot make " + file);
      }
    }
  }
  return folder.path();
}

Json::Value walk(const std::string& folder) {
  Json::Value files(Json::arrayValue);
  zantrio::CFolderWalk(files, folder).walk(folder);
  return files;
}

void runFind(const std::string& folder) {
  const std::string command =
      "find '" + folder + "' -type f -printf '%p\\t%f\\t%h\\t%s\\t%B@\\t%T@\\n' > /dev/null";
  if (std::system(command.c_str()) != 0) {  // NOLINT(concurrency-mt-unsafe): one thread
    throw std::runtime_error("find failed");
  }
}

double secondsOf(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void run(const std::string& folder) {
  const auto count = static_cast<double>(walk(folder).size());
  std::vector<double> walkSeconds;
  std::vector<double> textSeconds;
  std::vector<double> findSeconds;
  for (int round = 0; round < kRounds;
       ++round) {  // interleaved, because the machine's speed changes
    Json::Value files;
    std::string text;
    walkSeconds.push_back(secondsOf([&] { files = walk(folder); }));
    textSeconds.push_back(secondsOf([&] { text = Json::FastWriter().write(files); }));
    findSeconds.push_back(secondsOf([&] { runFind(folder); }));
  }
  const double walked = median(walkSeconds);
  const double written = median(textSeconds);
  const double found = median(findSeconds);
  std::printf("files                          %10.0f\n", count);
  std::printf("walk, records a second         %10.0f\n", count / walked);
  std::printf("find -printf, lines a second   %10.0f\n", count / found);
  std::printf("walk / find                    %10.2f   (above 1: the walk is faster)\n",
              found / walked);
  std::printf("walk with JSON text / find     %10.2f\n", found / (walked + written));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc > 1) {
      run(argv[1]);
      return 0;
    }
    const TemporaryFolder folder(TemporaryFolder::Place::kMemory);
    run(makeTree(folder));
    return 0;
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "bench_walk: %s\n", exception.what());
    return 1;
  }
}
