#include "bridge/query_handler_base.h"

#include <exception>
#include <optional>

#include "app/log/logger.h"
#include "bridge/dispatch_scope.h"
#include "bridge/json_text.h"
#include "bridge/page_gate.h"
#include "bridge/platform_exceptions.h"
#include "bridge/query_handler_context.h"
#include "include/wrapper/cef_helpers.h"

namespace zantrio {
namespace {

constexpr int kFailureCode = -1;

// A C++ exception is carried past the platform's frames instead of thrown through them, because not
// every platform runtime can unwind both kinds.
bool callGuarded(const std::function<Json::Value()>& call, Json::Value& result) {
  std::exception_ptr failure;
  const bool finished = callCatchingPlatformExceptions([&] {
    try {
      result = call();
    } catch (const std::exception&) {
      failure = std::current_exception();
    }
  });
  if (failure) {
    std::rethrow_exception(failure);
  }
  return finished;
}

}  // namespace

CQueryHandlerBase::CQueryHandlerBase() {
  registerMethod("supportedMethods", &CQueryHandlerBase::supportedMethods);
}

bool CQueryHandlerBase::OnQuery(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> frame,
                                int64_t /*query_id*/, const CefString& request, bool /*persistent*/,
                                CefRefPtr<Callback> callback) {
  CEF_REQUIRE_UI_THREAD();
  if (!callback) {
    return false;
  }
  if (gate_ && !gate_->admits(frame)) {
    refuse(frame, *callback);
    return true;
  }
  // A method may show a dialog during which the browser closes; the scope keeps the handlers alive
  // until the call has ended.
  const DispatchScope scope;
  try {
    return dispatch(request.ToString(), *callback);
  } catch (const std::exception& exception) {
    logError("Exception when executing query: ", exception.what());
    callback->Failure(kFailureCode, std::string("Exception caught when executing query handler: ") +
                                        exception.what());
  } catch (...) {
    failWithUnknownException(*callback);
  }
  return true;
}

void CQueryHandlerBase::OnQueryCanceled(CefRefPtr<CefBrowser> /*browser*/,
                                        CefRefPtr<CefFrame> /*frame*/, int64_t /*query_id*/) {}

void CQueryHandlerBase::setHandlerData(const QueryHandlerContext& context) {
  gate_ = context.gate;
}

Poco::Any CQueryHandlerBase::getHandlerData(int /*kind*/) {
  return {};
}

void CQueryHandlerBase::refuse(const CefRefPtr<CefFrame>& frame, Callback& callback) const {
  // A data: URL is the whole document.
  constexpr std::size_t kMaxLoggedLength = 200;
  const std::string url = frame ? frame->GetURL().ToString() : std::string();
  logWarning("Refused a query of a page that is not the application's: ",
             url.substr(0, kMaxLoggedLength));
  callback.Failure(kFailureCode, "The page is not allowed to use this bridge");
}

bool CQueryHandlerBase::dispatch(const std::string& request, Callback& callback) {
  logInformation("Received query: ", request);
  Json::Value root;
  if (!parseJson(request, root)) {
    logError("Failed to parse JSON!");
    callback.Failure(kFailureCode, "Failed to parse JSON");
    return true;
  }
  const Json::Value method = root.get("method", Json::Value());
  if (!method.isString()) {
    logError("Key 'method' not found in input json");
    callback.Failure(kFailureCode, "Key 'method' not found in input json!");
    return true;
  }
  return callMethod(method.asString(), root.get("parameters", Json::Value()), callback);
}

bool CQueryHandlerBase::callMethod(const std::string& name, const Json::Value& parameters,
                                   Callback& callback) {
  const auto entry = methods_.find(name);
  if (entry == methods_.end()) {
    logError("Handler for method ", name, " is not registered!");
    return false;
  }
  const Method method = entry->second;
  if (method == nullptr) {
    logError("Handler for method ", name, " is NULL!");
    return false;
  }
  Json::Value result;
  if (callGuarded([&] { return (this->*method)(parameters); }, result)) {
    callback.Success(writeCompactJson(result));
  } else {
    failWithUnknownException(callback);
  }
  return true;
}

void CQueryHandlerBase::failWithUnknownException(Callback& callback) {
  logError("Objective-C Exception caught when executing query handler");
  callback.Failure(kFailureCode, "Exception caught when executing query handler");
}

Json::Value CQueryHandlerBase::supportedMethods(const Json::Value& /*parameters*/) {
  Json::Value names(Json::arrayValue);
  for (const auto& [name, method] : methods_) {
    names.append(name);
  }
  return names;
}

}  // namespace zantrio
