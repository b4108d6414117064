#pragma once

#include <memory>
#include <string>

namespace zantrio {

// The bundle that the program belongs to, with its information dictionary.
// Thread: any, after construction. Implemented by each platform.
class CMainBundle {
 public:
  // The bundle of the running program.
  CMainBundle();
  // The bundle in `folder`.
  explicit CMainBundle(const std::string& folder);
  CMainBundle(const CMainBundle&) = delete;
  CMainBundle& operator=(const CMainBundle&) = delete;
  ~CMainBundle();

  // Why the dictionary could not be read, as a sentence for the user; empty when it was read.
  const std::string& error() const;
  // Whether there is an entry of any type.
  bool hasEntry(const std::string& key) const;
  // False, with `value` unchanged, when the entry is missing or not a string.
  bool getString(const std::string& key, std::string& value) const;

 private:
  class Impl;
  const std::unique_ptr<Impl> impl_;
};

}  // namespace zantrio
