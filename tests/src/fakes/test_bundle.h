#pragma once

#include <string>

#include "support/temporary_folder.h"

namespace zantrio::test {

// A temporary folder that can become a bundle.
class TestBundle : public TemporaryFolder {
 public:
  std::string folder() const { return path(); }
  // Writes Info.plist with these entries in its dictionary.
  void writeInfo(const std::string& entries) const;
};

// Sets HOME while it lives, or unsets it (null).
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
