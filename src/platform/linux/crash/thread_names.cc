#include "platform/linux/crash/thread_names.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace zantrio {
namespace {

std::string taskFolder(pid_t process) {
  return "/proc/" + std::to_string(process) + "/task";
}

}  // namespace

std::vector<pid_t> threadsOf(pid_t process) {
  std::vector<pid_t> threads;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(taskFolder(process), error), end;
       !error && entry != end; entry.increment(error)) {
    threads.push_back(static_cast<pid_t>(std::atol(entry->path().filename().c_str())));
  }
  std::sort(threads.begin(), threads.end());
  return threads;
}

std::string nameThread(pid_t process, pid_t thread) {
  const std::string number = std::to_string(thread);
  std::ifstream file(taskFolder(process) + "/" + number + "/comm");
  std::string name;
  return std::getline(file, name) ? number + " (" + name + ")" : number;
}

}  // namespace zantrio
