#include "probe.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace zt_transfers::test {

CProbe::CProbe(const std::vector<std::string>& arguments) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  output_ = CUniqueFd(ends[0]);
  const CUniqueFd input(ends[1]);
  std::vector<char*> words{const_cast<char*>("kill_probe")};
  for (const std::string& argument : arguments) {
    words.push_back(const_cast<char*>(argument.c_str()));
  }
  words.push_back(nullptr);
  process_ = ::fork();
  if (process_ == 0) {
    ::dup2(input.get(), STDOUT_FILENO);
    ::execv(ZANTRIO_KILL_PROBE, words.data());
    ::_exit(127);
  }
}

CProbe::~CProbe() {
  if (process_ > 0) {
    kill();
  }
}

void CProbe::kill() {
  ::kill(process_, SIGKILL);
  wait();
}

int CProbe::wait() {
  int status = 0;
  ::waitpid(process_, &status, 0);
  process_ = -1;
  return status;
}

std::string CProbe::output() {
  std::string text;
  char buffer[4096];
  for (ssize_t count = 0; (count = ::read(output_.get(), buffer, sizeof buffer)) > 0;) {
    text.append(buffer, static_cast<std::size_t>(count));
  }
  return text;
}

std::chrono::seconds killingTime() {
  constexpr int kTests = 4;
  const char* seconds = std::getenv("ZANTRIO_SOAK_SECONDS");  // NOLINT(concurrency-mt-unsafe)
  return std::chrono::seconds(seconds == nullptr ? 6 : std::atoi(seconds) / kTests);
}

}  // namespace zt_transfers::test
