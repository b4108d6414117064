#pragma once

#include <deque>
#include <set>
#include <string>
#include <vector>

namespace zantrio::test {

// Takes the place of the platform's dialogs, alerts and permissions. One a process; what the
// factories make tells this object.
struct FakePlatform {
  static FakePlatform& instance();

  // What the user answers, dialog by dialog; with none left every dialog is cancelled.
  std::deque<std::vector<std::string>> answers;
  std::set<std::string> unreadablePaths;
  bool makesDialogs = true;

  // "files: title" or "folder: title" for each time that a dialog was shown.
  std::vector<std::string> shownDialogs;
  std::vector<std::string> alerts;
  int openDialogs = 0;  // objects that were not destroyed yet
};

}  // namespace zantrio::test
