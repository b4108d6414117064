#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "fault_server.h"
#include "os/unique_fd.h"
#include "sandbox.h"

namespace zt_transfers::test {
namespace {

using Clock = std::chrono::steady_clock;

// A run of kill_probe in a process of its own.
class CProbe {
 public:
  CProbe(const std::string& folder, const std::string& url, int files) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
      throw std::runtime_error("no pipe");
    }
    output_ = CUniqueFd(ends[0]);
    const CUniqueFd input(ends[1]);
    const std::string count = std::to_string(files);
    process_ = ::fork();
    if (process_ == 0) {
      ::dup2(input.get(), STDOUT_FILENO);
      ::execl(ZANTRIO_KILL_PROBE, "kill_probe", folder.c_str(), url.c_str(), count.c_str(),
              static_cast<char*>(nullptr));
      ::_exit(127);
    }
  }
  ~CProbe() {
    if (process_ > 0) {
      kill();
    }
  }
  CProbe(const CProbe&) = delete;
  CProbe& operator=(const CProbe&) = delete;

  void kill() {
    ::kill(process_, SIGKILL);
    wait();
  }
  int wait() {
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    return status;
  }
  // All it has printed; ends with the process.
  std::string output() {
    std::string text;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(output_.get(), buffer, sizeof buffer)) > 0;) {
      text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  CUniqueFd output_;
  pid_t process_ = -1;
};

std::chrono::seconds budget() {
  const char* seconds = std::getenv("ZANTRIO_SOAK_SECONDS");  // NOLINT(concurrency-mt-unsafe)
  return std::chrono::seconds(seconds == nullptr ? 6 : std::atoi(seconds));
}

class Kill : public ::testing::Test {
 protected:
  static constexpr int kFiles = 400;

  // Sizes from nothing to some hundred kilobytes.
  static std::string content(int number) {
    return patternOf(static_cast<std::size_t>(number % 20 == 0 ? 300'000 : number * 7),
                     static_cast<unsigned>(number));
  }
  void writeFiles() const {
    for (int number = 0; number < kFiles; ++number) {
      sandbox.file("file" + std::to_string(number), content(number));
    }
  }
  void noteCompleted(const std::string& output) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
      if (line != "all") {
        const bool first = completed.emplace(line, requestsFor(line)).second;
        EXPECT_TRUE(first) << line << " was told to be completed twice";
      }
    }
  }
  void checkEverything() {
    for (int number = 0; number < kFiles; ++number) {
      const std::string name = std::to_string(number);
      const auto object = server.object(place + name);
      ASSERT_TRUE(object.has_value()) << name;
      EXPECT_TRUE(*object == content(number)) << name;
      // It can have been completed without having been told before a kill.
      const auto told = completed.find(name);
      if (told != completed.end()) {
        EXPECT_EQ(requestsFor(name), told->second)
            << name << " was sent again after it was told to be completed";
      }
    }
  }

  std::size_t requestsFor(const std::string& name) {
    return server.requestsTo(place + name).size();
  }

  CSandbox sandbox;
  CFaultServer server;
  std::string place;  // on the server, of this round
  // How often a file had been sent when it was told to be completed.
  std::map<std::string, std::size_t> completed;
};

TEST_F(Kill, LosesNothingAndSendsNothingAgainThatWasCompleted) {
  writeFiles();
  server.planForAll(fault::slow(4'000'000));
  const auto end = Clock::now() + budget();
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::minstd_rand random(seed);
  int kills = 0;
  int rounds = 0;
  const auto begin = [&] {
    return CProbe(sandbox.folder().string(), server.url("/round" + std::to_string(rounds)), kFiles);
  };
  while (Clock::now() < end) {
    ++rounds;
    place = "/round" + std::to_string(rounds) + "/";
    completed.clear();
    bool all = false;
    while (!all && Clock::now() < end) {
      auto probe = begin();
      const std::chrono::milliseconds life(random() % 120);
      std::this_thread::sleep_for(life);  // a random moment is what this is about
      probe.kill();
      const std::string output = probe.output();
      noteCompleted(output);
      all = output.find("all") != std::string::npos;
      ++kills;
    }
    if (!all) {
      auto probe = begin();
      const std::string output = probe.output();
      ASSERT_EQ(probe.wait(), 0);
      noteCompleted(output);
    }
    checkEverything();
    if (HasFailure()) {
      break;
    }
    std::filesystem::remove(sandbox.folder() / "zt_uploads.db");
  }
  std::printf("%d kills in %d rounds of %d files\n", kills, rounds, kFiles);
  EXPECT_GT(kills, 3);
}

}  // namespace
}  // namespace zt_transfers::test
