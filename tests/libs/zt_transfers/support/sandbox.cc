#include "sandbox.h"

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

#include "base/wide_bytes.h"
#include "hash/md5.h"

namespace zt_transfers::test {

CSandbox::CSandbox(const std::filesystem::path& parent) {
  std::string pattern = (parent / "zt_test_XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("no temporary folder for the test");
  }
  folder_ = pattern;
}

CSandbox::~CSandbox() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::filesystem::path CSandbox::file(const std::string& name, const std::string& content) const {
  const auto path = folder_ / name;
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

std::string contentOf(const std::filesystem::path& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

std::string patternOf(std::size_t size, unsigned seed) {
  std::string content(size, '\0');
  std::minstd_rand random(seed);
  for (char& byte : content) {
    byte = static_cast<char>(random() >> 8);
  }
  return content;
}

std::wstring fileUrl(const std::filesystem::path& path) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string url = "file://";
  for (const char character : path.string()) {
    const auto byte = static_cast<unsigned char>(character);
    if (std::isalnum(byte) != 0 || character == '/') {
      url.push_back(character);
    } else {
      url.append({'%', kDigits[byte >> 4], kDigits[byte & 0xF]});
    }
  }
  return widened(url);
}

std::string md5Of(const std::string& content) {
  CMd5 md5;
  md5.add(content.data(), content.size());
  return md5.finish();
}

}  // namespace zt_transfers::test
