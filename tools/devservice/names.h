#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace zantrio::devservice {

// The reason why the text cannot be a file's path below a message's folder; empty if it can.
// Allowed: one or more names joined by "/", each 1 to 255 bytes of UTF-8, none of them "." or "..".
std::string pathProblem(std::string_view path);

// The text shortened and with control characters replaced, for messages to people.
std::string printable(std::string_view text);

// Percent-encodes a path for a URL; "/" stays.
std::string encodePath(std::string_view path);

// Gives every file of a message its own path: a second "a.txt" becomes "a (2).txt".
class CPathAllocator {
 public:
  // Reserves and returns a free path for `wanted`, which must be valid.
  std::string allocate(const std::string& wanted);
  // Reserves a path for a file, and its folders as folders.
  void reserve(const std::string& path);

 private:
  enum class Kind { kFile, kFolder };

  bool fits(const std::string& path, Kind kind) const;
  std::string freeName(const std::string& folder, const std::string& name, Kind kind);

  std::unordered_map<std::string, Kind> taken_;
  std::unordered_map<std::string, int> lastCount_;  // so that many equal names are not slow
};

}  // namespace zantrio::devservice
