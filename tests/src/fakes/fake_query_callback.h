#pragma once

#include <string>
#include <vector>

#include "bridge/query_handler_base.h"
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

// The page's response to this query: its text, or "code text" of the failure.
inline std::string askBridge(CQueryHandlerBase& handler, const std::string& method,
                             const std::string& parameters = "null") {
  const CefRefPtr<FakeQueryCallback> callback(new FakeQueryCallback);
  handler.OnQuery(nullptr, nullptr, 1,
                  R"({"method":")" + method + R"(","parameters":)" + parameters + "}", false,
                  callback);
  const auto& answers = callback->failures.empty() ? callback->successes : callback->failures;
  return answers.size() == 1 ? answers[0] : "no answer";
}

}  // namespace zantrio::test
