#pragma once

#include <deque>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "services/contact_entry.h"

namespace zantrio::test {

// What the stand-ins for the platform's services were asked to do, and what they answer. Linked
// instead of the platform's.
struct FakeServices {
  static FakeServices& instance();
  void reset();

  bool available = true;  // false: nothing can be made
  std::vector<std::string> calls;
  bool confirmAnswer = true;
  std::function<void()> duringConfirm;
  bool hasAddressBook = true;
  ContactEntries contacts;  // what a search finds
  // The URLs that the user chooses, dialog by dialog; with none left every dialog is cancelled.
  std::deque<std::string> chosenFolders;
  std::set<std::string> readOnlyPaths;
};

}  // namespace zantrio::test
