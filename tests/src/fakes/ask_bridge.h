#pragma once

#include <string>

#include "bridge/query_handler_base.h"
#include "src/fakes/fake_query_callback.h"

namespace zantrio::test {

// What the page would get for this query: the answer's text, or "code text" of the failure.
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
