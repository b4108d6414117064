#pragma once

#include <Poco/TemporaryFile.h>

#include <string>

namespace zantrio::test {

// A folder of its own, with whatever files a test puts there; removed at the end.
class TestBundle {
 public:
  TestBundle();

  std::string folder() const { return folder_.path(); }
  void writeFile(const std::string& name, const std::string& text) const;
  // Writes Info.plist with these entries in its dictionary.
  void writeInfo(const std::string& entries) const;

 private:
  Poco::TemporaryFile folder_;
};

// Sets HOME while it lives, or takes it away (null).
class ScopedHome {
 public:
  explicit ScopedHome(const char* home);
  ScopedHome(const ScopedHome&) = delete;
  ScopedHome& operator=(const ScopedHome&) = delete;
  ~ScopedHome();

 private:
  std::string saved_;
  bool wasSet_;
};

}  // namespace zantrio::test
