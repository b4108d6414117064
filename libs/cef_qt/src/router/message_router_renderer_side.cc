#include <map>

#include "base/qt_text.h"
#include "bridge/script_context.h"
#include "include/wrapper/cef_message_router.h"
#include "router/router_messages.h"

namespace cef_qt {
namespace {

// Sends the queries of its documents to the browser side and passes the responses on to the
// documents. TID_RENDERER.
class RendererSide final : public CefMessageRouterRendererSide, private QueryTarget {
 public:
  explicit RendererSide(const CefMessageRouterConfig& config)
      : names_(toQt(config.js_query_function), toQt(config.js_cancel_function)),
        messageName_(messageName(config.js_query_function)) {}
  ~RendererSide() override;

  int GetPendingCount(CefRefPtr<CefBrowser> browser, CefRefPtr<CefV8Context> context) override;
  void OnContextCreated(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                        CefRefPtr<CefV8Context> context) override;
  void OnContextReleased(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                         CefRefPtr<CefV8Context> context) override;
  bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                CefProcessId source_process,
                                CefRefPtr<CefProcessMessage> message) override;

 private:
  struct Document {
    CefRefPtr<ScriptContext> context;
    std::map<int, bool> pending;  // query id → persistent
  };

  void query(const CefRefPtr<CefV8Context>& context, int id, CefString request,
             bool persistent) override;
  void cancel(const CefRefPtr<CefV8Context>& context, int id) override;
  Document* find(const CefRefPtr<CefV8Context>& context);
  void sendCancel(const ScriptContext& context, const CefRefPtr<CefFrame>& frame, int id);

  const RouterNames names_;
  const CefString messageName_;
  std::map<int, Document> documents_;  // by context id
};

RendererSide::~RendererSide() {
  for (auto& [id, document] : documents_) {
    document.context->uninstall(this);
  }
}

RendererSide::Document* RendererSide::find(const CefRefPtr<CefV8Context>& context) {
  const auto* own = dynamic_cast<ScriptContext*>(context.get());
  const auto found = own ? documents_.find(own->id()) : documents_.end();
  return found == documents_.end() ? nullptr : &found->second;
}

int RendererSide::GetPendingCount(CefRefPtr<CefBrowser> browser, CefRefPtr<CefV8Context> context) {
  std::size_t count = 0;
  for (const auto& [id, document] : documents_) {
    const bool ofBrowser = !browser || document.context->GetBrowser()->IsSame(browser);
    const bool ofContext = !context || document.context->IsSame(context);
    count += ofBrowser && ofContext ? document.pending.size() : 0;
  }
  return static_cast<int>(count);
}

void RendererSide::OnContextCreated(CefRefPtr<CefBrowser> /*browser*/,
                                    CefRefPtr<CefFrame> /*frame*/,
                                    CefRefPtr<CefV8Context> context) {
  CefRefPtr<ScriptContext> own = dynamic_cast<ScriptContext*>(context.get());
  if (own && own->install(names_, this)) {
    documents_[own->id()].context = own;
  }
}

void RendererSide::OnContextReleased(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> frame,
                                     CefRefPtr<CefV8Context> context) {
  Document* document = find(context);
  if (!document) {
    return;
  }
  const Document gone = std::move(*document);
  documents_.erase(gone.context->id());
  gone.context->uninstall(this);
  for (const auto& [id, persistent] : gone.pending) {
    sendCancel(*gone.context, frame, id);
  }
}

void RendererSide::query(const CefRefPtr<CefV8Context>& context, int id, CefString request,
                         bool persistent) {
  Document* document = find(context);
  if (!document || !document->pending.emplace(id, persistent).second) {
    return;
  }
  QueryMessage message;
  message.context = document->context->id();
  message.query = id;
  message.request = std::move(request);
  message.persistent = persistent;
  context->GetFrame()->SendProcessMessage(PID_BROWSER, message.make(messageName_));
}

void RendererSide::cancel(const CefRefPtr<CefV8Context>& context, int id) {
  Document* document = find(context);
  if (document && document->pending.erase(id) > 0) {
    sendCancel(*document->context, context->GetFrame(), id);
  }
}

void RendererSide::sendCancel(const ScriptContext& context, const CefRefPtr<CefFrame>& frame,
                              int id) {
  QueryMessage message;
  message.context = context.id();
  message.query = id;
  message.isCancel = true;
  frame->SendProcessMessage(PID_BROWSER, message.make(messageName_));
}

bool RendererSide::OnProcessMessageReceived(CefRefPtr<CefBrowser> /*browser*/,
                                            CefRefPtr<CefFrame> /*frame*/,
                                            CefProcessId /*source_process*/,
                                            CefRefPtr<CefProcessMessage> message) {
  if (message->GetName() != messageName_) {
    return false;
  }
  const ResponseMessage response = ResponseMessage::read(message->GetArgumentList());
  const auto found = documents_.find(response.context);
  if (found == documents_.end()) {
    return true;
  }
  Document& document = found->second;
  const auto query = document.pending.find(response.query);
  if (query == document.pending.end()) {
    return true;
  }
  const bool ends = !response.success || !query->second;
  if (ends) {
    document.pending.erase(query);
  }
  if (response.success) {
    document.context->succeed(response.query, response.text);
  } else {
    document.context->fail(response.query, response.code, response.text);
  }
  return true;
}

}  // namespace
}  // namespace cef_qt

CefRefPtr<CefMessageRouterRendererSide> CefMessageRouterRendererSide::Create(
    const CefMessageRouterConfig& config) {
  if (config.js_query_function.empty() || config.js_cancel_function.empty()) {
    return nullptr;
  }
  return new cef_qt::RendererSide(config);
}
