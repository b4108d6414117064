#include "src/fakes/test_bundle.h"

#include <cstdlib>

namespace zantrio::test {
namespace {

void setHome(const char* home) {
  if (home != nullptr) {
    setenv("HOME", home, 1);
  } else {
    unsetenv("HOME");
  }
}

}  // namespace

void TestBundle::writeInfo(const std::string& entries) const {
  makeFile("Info.plist", R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" +
                             entries + "</dict></plist>");
}

ScopedHome::ScopedHome(const char* home) {
  const char* const saved = std::getenv("HOME");
  wasSet_ = saved != nullptr;
  saved_ = wasSet_ ? saved : "";
  setHome(home);
}

ScopedHome::~ScopedHome() {
  setHome(wasSet_ ? saved_.c_str() : nullptr);
}

}  // namespace zantrio::test
