#pragma once

#include <json/value.h>

#include <map>
#include <memory>
#include <string>

#include "bridge/query_handler.h"

namespace zantrio {

class CPageGate;

// Answers the queries of one bridge: parses the request, finds the method by its name, calls it,
// and sends the page the result or the reason of a failure. Derived classes register their methods
// in their constructors and do not override OnQuery. Queries of documents that the gate does not
// admit are refused before they are read.
//
// Every query is answered before OnQuery returns. An exception thrown by a method becomes the
// answer. Thread: UI.
class CQueryHandlerBase : public IQueryHandler {
 public:
  using Callback = CefMessageRouterBrowserSide::Callback;
  using Method = Json::Value (CQueryHandlerBase::*)(const Json::Value& parameters);
  using CefMessageRouterBrowserSide::Handler::OnQuery;

  CQueryHandlerBase();

  bool OnQuery(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, int64_t query_id,
               const CefString& request, bool persistent, CefRefPtr<Callback> callback) override;
  // Does nothing: no query outlives its dispatch.
  void OnQueryCanceled(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                       int64_t query_id) override;
  // Keeps the gate. Overrides call it.
  void setHandlerData(const QueryHandlerContext& context) override;
  // Empty for every kind.
  Poco::Any getHandlerData(int kind) override;

 protected:
  // Registering a name again replaces its method. A null method may be registered; calling it is
  // reported as an error.
  template <class Handler>
  void registerMethod(const std::string& name,
                      Json::Value (Handler::*method)(const Json::Value& parameters)) {
    methods_[name] = static_cast<Method>(method);
  }

 private:
  void refuse(const CefRefPtr<CefFrame>& frame, Callback& callback) const;
  bool dispatch(const std::string& request, Callback& callback);
  bool callMethod(const std::string& name, const Json::Value& parameters, Callback& callback);
  static void failWithUnknownException(Callback& callback);
  Json::Value supportedMethods(const Json::Value& parameters);

  std::map<std::string, Method> methods_;
  std::shared_ptr<const CPageGate> gate_;
};

}  // namespace zantrio
