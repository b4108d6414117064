#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace zantrio::devservice {

// Why the text cannot be a file's path below a message's folder; empty when it can.
// Allowed: one or more names joined by "/", each 1 to 255 bytes of UTF-8, none of them "." or "..".
std::string whyUnusable(std::string_view path);

// The text shortened and with its control characters replaced, for messages to people.
std::string printable(std::string_view text);

// Percent-encodes a path for a URL; "/" stays.
std::string encodePath(std::string_view path);

// Gives every file of a message a place of its own: a second "a.txt" becomes "a (2).txt".
class CPlaces {
 public:
  // A free path for a file that wants to be at `wanted` (which must be usable), now taken.
  std::string take(const std::string& wanted);
  // Marks a path as taken by a file, and its folders as folders.
  void mark(const std::string& path);

 private:
  enum class Kind { kFile, kFolder };

  bool fits(const std::string& path, Kind kind) const;
  std::string freeName(const std::string& folder, const std::string& name, Kind kind);

  std::unordered_map<std::string, Kind> taken_;
  std::unordered_map<std::string, int> lastCount_;  // keeps many equal names from being slow
};

}  // namespace zantrio::devservice
