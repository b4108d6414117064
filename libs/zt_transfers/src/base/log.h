#pragma once

#include <string_view>

namespace zt_transfers {

// Where the library writes what a person may want to know later. Thread: any. Never throws.
// Callers pass no token, no signed query and no request header: URLs go through loggableUrl.
class ILog {
 public:
  enum class Priority { kInformation, kWarning, kError };

  virtual ~ILog() = default;
  virtual void write(Priority priority, std::string_view message) noexcept = 0;

  void information(std::string_view message) noexcept { write(Priority::kInformation, message); }
  void warning(std::string_view message) noexcept { write(Priority::kWarning, message); }
  void error(std::string_view message) noexcept { write(Priority::kError, message); }
};

}  // namespace zt_transfers
