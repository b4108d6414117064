#include <algorithm>
#include <atomic>
#include <map>
#include <tuple>
#include <vector>

#include "include/wrapper/cef_helpers.h"
#include "include/wrapper/cef_message_router.h"
#include "router/router_messages.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

class BrowserSide;

// Responds to one query from any thread. Without effect once the router has dropped the query.
class QueryCallback final : public CefMessageRouterBrowserSideCallback {
 public:
  QueryCallback(CefRefPtr<BrowserSide> router, int64_t query, bool persistent)
      : router_(std::move(router)), query_(query), persistent_(persistent) {}
  ~QueryCallback() override;

  void Success(const CefString& response) override;
  void Failure(int error_code, const CefString& error_message) override;

 private:
  void respond(ResponseMessage message, bool last);

  const CefRefPtr<BrowserSide> router_;
  const int64_t query_;
  const bool persistent_;
  std::atomic<bool> answered_{false};
  std::atomic<bool> ended_{false};
  IMPLEMENT_REFCOUNTING(QueryCallback);
};

class BrowserSide final : public CefMessageRouterBrowserSide {
 public:
  explicit BrowserSide(const CefMessageRouterConfig& config)
      : messageName_(messageName(config.js_query_function)) {}

  bool AddHandler(Handler* handler, bool first) override;
  bool RemoveHandler(Handler* handler) override;
  void CancelPending(CefRefPtr<CefBrowser> browser, Handler* handler) override {
    cancelMatching(browser, handler, true);
  }
  int GetPendingCount(CefRefPtr<CefBrowser> browser, Handler* handler) override;
  void OnBeforeClose(CefRefPtr<CefBrowser> browser) override {
    cancelMatching(browser, nullptr, false);
  }
  void OnRenderProcessTerminated(CefRefPtr<CefBrowser> browser) override {
    cancelMatching(browser, nullptr, false);
  }
  void OnBeforeBrowse(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame) override {
    if (frame && frame->IsMain()) {
      cancelMatching(browser, nullptr, false);
    }
  }
  bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                CefProcessId source_process,
                                CefRefPtr<CefProcessMessage> message) override;

  // Sends a response; `last` ends the query. UI thread.
  void respond(int64_t query, ResponseMessage message, bool last);

 private:
  // The ids of browser, context and query on the render side.
  using PageKey = std::tuple<int, int, int>;
  struct Query {
    PageKey key;
    Handler* handler = nullptr;  // null until a handler accepts the query
    CefRefPtr<CefBrowser> browser;
    CefRefPtr<CefFrame> frame;
  };

  void startQuery(const CefRefPtr<CefBrowser>& browser, const CefRefPtr<CefFrame>& frame,
                  const QueryMessage& message);
  // Returns the handler that accepts the query, or null.
  Handler* offer(int64_t id, const CefRefPtr<CefBrowser>& browser, const CefRefPtr<CefFrame>& frame,
                 const QueryMessage& message);
  // Moves a pending query out. False if it is no longer pending.
  bool take(int64_t id, Query& query);
  void cancelFromPage(const PageKey& key);
  void cancelMatching(const CefRefPtr<CefBrowser>& browser, const Handler* handler,
                      bool notifyPage);
  static bool matches(const Query& query, const CefRefPtr<CefBrowser>& browser,
                      const Handler* handler);
  void sendFailure(const Query& query);
  void sendResponse(const Query& query, ResponseMessage message);

  const CefString messageName_;
  std::vector<Handler*> handlers_;
  int64_t lastQuery_ = 0;
  std::map<int64_t, Query> pending_;
  std::map<PageKey, int64_t> idOfKey_;
};

// A persistent query that has been answered stays open until the page cancels it or goes away.
QueryCallback::~QueryCallback() {
  if (!answered_) {
    respond({0, 0, false, kCanceledCode, kCanceledText}, true);
  }
}

void QueryCallback::Success(const CefString& response) {
  respond({0, 0, true, 0, response}, !persistent_);
}

void QueryCallback::Failure(int error_code, const CefString& error_message) {
  respond({0, 0, false, error_code, error_message}, true);
}

void QueryCallback::respond(ResponseMessage message, bool last) {
  if (last ? ended_.exchange(true) : ended_.load()) {
    return;
  }
  answered_ = true;
  if (CefCurrentlyOn(TID_UI)) {
    router_->respond(query_, std::move(message), last);
    return;
  }
  postTo(TID_UI, [router = router_, query = query_, message = std::move(message), last] {
    router->respond(query, message, last);
  });
}

bool BrowserSide::AddHandler(Handler* handler, bool first) {
  CEF_REQUIRE_UI_THREAD();
  if (!handler || std::find(handlers_.begin(), handlers_.end(), handler) != handlers_.end()) {
    return false;
  }
  handlers_.insert(first ? handlers_.begin() : handlers_.end(), handler);
  return true;
}

bool BrowserSide::RemoveHandler(Handler* handler) {
  CEF_REQUIRE_UI_THREAD();
  if (std::erase(handlers_, handler) == 0) {
    return false;
  }
  cancelMatching(nullptr, handler, true);
  return true;
}

bool BrowserSide::matches(const Query& query, const CefRefPtr<CefBrowser>& browser,
                          const Handler* handler) {
  return (!browser || query.browser->IsSame(browser)) && (!handler || query.handler == handler);
}

int BrowserSide::GetPendingCount(CefRefPtr<CefBrowser> browser, Handler* handler) {
  return static_cast<int>(std::count_if(pending_.begin(), pending_.end(), [&](const auto& entry) {
    return entry.second.handler && matches(entry.second, browser, handler);
  }));
}

bool BrowserSide::OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                           CefProcessId /*source_process*/,
                                           CefRefPtr<CefProcessMessage> message) {
  CEF_REQUIRE_UI_THREAD();
  if (message->GetName() != messageName_) {
    return false;
  }
  const QueryMessage query = QueryMessage::read(message->GetArgumentList());
  if (query.isCancel) {
    cancelFromPage({browser->GetIdentifier(), query.context, query.query});
  } else {
    startQuery(browser, frame, query);
  }
  return true;
}

void BrowserSide::startQuery(const CefRefPtr<CefBrowser>& browser, const CefRefPtr<CefFrame>& frame,
                             const QueryMessage& message) {
  const int64_t id = ++lastQuery_;
  const PageKey key{browser->GetIdentifier(), message.context, message.query};
  pending_.emplace(id, Query{key, nullptr, browser, frame});
  idOfKey_[key] = id;

  Handler* handler = offer(id, browser, frame, message);
  const auto still = pending_.find(id);
  if (still == pending_.end()) {
    return;
  }
  if (handler) {
    still->second.handler = handler;
    return;
  }
  Query unhandled;
  take(id, unhandled);
  sendFailure(unhandled);
}

BrowserSide::Handler* BrowserSide::offer(int64_t id, const CefRefPtr<CefBrowser>& browser,
                                         const CefRefPtr<CefFrame>& frame,
                                         const QueryMessage& message) {
  const CefRefPtr<BrowserSide> self(this);
  CefRefPtr<CefMessageRouterBrowserSideCallback> callback =
      new QueryCallback(self, id, message.persistent);
  const std::vector<Handler*> handlers = handlers_;
  for (Handler* handler : handlers) {
    // An earlier handler may have removed this one.
    if (std::find(handlers_.begin(), handlers_.end(), handler) == handlers_.end()) {
      continue;
    }
    if (handler->OnQuery(browser, frame, id, message.request, message.persistent, callback)) {
      return handler;
    }
  }
  return nullptr;
}

bool BrowserSide::take(int64_t id, Query& query) {
  const auto found = pending_.find(id);
  if (found == pending_.end()) {
    return false;
  }
  query = std::move(found->second);
  pending_.erase(found);
  idOfKey_.erase(query.key);
  return true;
}

void BrowserSide::cancelFromPage(const PageKey& key) {
  const auto found = idOfKey_.find(key);
  if (found == idOfKey_.end()) {
    return;
  }
  const int64_t id = found->second;
  Query query;
  if (take(id, query) && query.handler) {
    query.handler->OnQueryCanceled(query.browser, query.frame, id);
  }
}

void BrowserSide::cancelMatching(const CefRefPtr<CefBrowser>& browser, const Handler* handler,
                                 bool notifyPage) {
  CEF_REQUIRE_UI_THREAD();
  const CefRefPtr<BrowserSide> self(this);
  std::vector<int64_t> ids;
  for (const auto& [id, query] : pending_) {
    if (matches(query, browser, handler)) {
      ids.push_back(id);
    }
  }
  for (const int64_t id : ids) {
    Query query;
    if (!take(id, query)) {
      continue;
    }
    if (notifyPage) {
      sendFailure(query);
    }
    if (query.handler) {
      query.handler->OnQueryCanceled(query.browser, query.frame, id);
    }
  }
}

void BrowserSide::respond(int64_t query, ResponseMessage message, bool last) {
  if (last) {
    Query ended;
    if (take(query, ended)) {
      sendResponse(ended, std::move(message));
    }
    return;
  }
  const auto found = pending_.find(query);
  if (found != pending_.end()) {
    sendResponse(found->second, std::move(message));
  }
}

void BrowserSide::sendFailure(const Query& query) {
  sendResponse(query, {0, 0, false, kCanceledCode, kCanceledText});
}

void BrowserSide::sendResponse(const Query& query, ResponseMessage message) {
  message.context = std::get<1>(query.key);
  message.query = std::get<2>(query.key);
  query.frame->SendProcessMessage(PID_RENDERER, message.make(messageName_));
}

}  // namespace
}  // namespace cef_qt

CefRefPtr<CefMessageRouterBrowserSide> CefMessageRouterBrowserSide::Create(
    const CefMessageRouterConfig& config) {
  if (config.js_query_function.empty() || config.js_cancel_function.empty()) {
    return nullptr;
  }
  return new cef_qt::BrowserSide(config);
}
