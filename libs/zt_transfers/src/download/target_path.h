#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zt_transfers {

// Where a file goes below its group's folder.
struct TargetPath {
  std::vector<std::string> folders;
  std::string name;

  bool operator==(const TargetPath&) const = default;
};

// Splits a path from the service at its slashes. Throws std::invalid_argument, whose text says why,
// for a path that would leave the folder or does not name a file: absolute, "..", ".", an empty
// name, a NUL, or a name longer than file systems accept.
TargetPath parseTargetPath(std::string_view path);

inline constexpr std::size_t kLongestName = 255;  // bytes

// "name" + `tail` + ".ext", shortened at a UTF-8 boundary to a length that file systems accept.
std::string withTail(const std::string& name, const std::string& tail);

// Names beyond this number are not tried.
inline constexpr unsigned kMaxCounted = 10'000;

// "name.ext" for 0, else "name (1).ext" and so on.
std::string countedName(const std::string& name, unsigned count);

// The hidden name of the partial file for a file of this name: short enough for every name, and
// determined by `key`.
std::string partialName(const std::string& name, std::string_view key);

}  // namespace zt_transfers
