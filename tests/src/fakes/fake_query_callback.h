#pragma once

#include <string>
#include <vector>

#include "include/wrapper/cef_message_router.h"

namespace zantrio::test {

// Records the answers to a query.
class FakeQueryCallback : public CefMessageRouterBrowserSide::Callback {
 public:
  void Success(const CefString& response) override { successes.push_back(response.ToString()); }
  void Failure(int error_code, const CefString& error_message) override {
    failures.push_back(std::to_string(error_code) + " " + error_message.ToString());
  }

  std::vector<std::string> successes;
  std::vector<std::string> failures;  // "code text"

 private:
  IMPLEMENT_REFCOUNTING(FakeQueryCallback);
};

}  // namespace zantrio::test
