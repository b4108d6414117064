#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "services/contacts/contact.h"
#include "services/file_permissions_retriever.h"

namespace zantrio::test {

// The calls and results of the fake platform services, which are linked instead of the platform's.
struct FakeServices {
  static FakeServices& instance();
  void reset();

  bool available = true;  // false: nothing can be made
  std::vector<std::string> calls;
  bool confirmAnswer = true;
  std::function<void()> duringCall;  // runs inside every call, once it is recorded
  bool hasAddressBook = true;
  ContactEntries contacts;  // what a search finds
  // The user's choices as URLs, one element per dialog; further dialogs are cancelled.
  std::deque<std::vector<std::string>> choices;
  int openDialogs = 0;  // choose dialogs that were not destroyed yet
  int permissions = IFilePermissionsRetriever::kRead + IFilePermissionsRetriever::kWrite;
  std::map<std::string, int> permissionsOf;  // of paths that have others
};

}  // namespace zantrio::test
