#include "src/files/log_recorder.h"

#include <filesystem>
#include <fstream>
#include <regex>

#include "app/logger.h"
#include "src/files/temporary_folder.h"

namespace zantrio::test {

namespace {

// One file for the whole program: the log stays with the first file it wrote to.
const std::string& logPath() {
  static const TemporaryFolder folder;
  static const std::string path = [] {
    const std::string file = folder.makeFile("test.log");
    CLogHolder::get()->setLogPath(file);
    return file;
  }();
  return path;
}

}  // namespace

LogRecorder::LogRecorder()
    : begin_(static_cast<std::streamoff>(std::filesystem::file_size(logPath()))) {}

std::vector<std::string> LogRecorder::lines() const {
  const std::regex pattern(R"(\[[^\]]*\] \[[^\]]*\] \[(\w+)\] (.*))");
  std::ifstream file(logPath(), std::ios::binary);
  file.seekg(begin_);
  std::vector<std::string> lines;
  std::string line;
  while (std::getline(file, line)) {
    if (!line.empty()) {
      lines.push_back(std::regex_replace(line, pattern, "$1: $2"));
    }
  }
  return lines;
}

}  // namespace zantrio::test
