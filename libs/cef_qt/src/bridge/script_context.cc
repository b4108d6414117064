#include "bridge/script_context.h"

#include <algorithm>
#include <atomic>

#include "base/qt_text.h"

namespace cef_qt {
namespace {

int nextId() {
  static std::atomic<int> last{0};
  return ++last;
}

}  // namespace

ScriptContext::ScriptContext(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                             PageChannel* channel)
    : id_(nextId()), browser_(std::move(browser)), frame_(std::move(frame)), channel_(channel) {}

bool ScriptContext::install(const RouterNames& names, QueryTarget* target) {
  if (!targets_.emplace(names.first, target).second) {
    return false;
  }
  installed_.push_back(names);
  return true;
}

void ScriptContext::uninstall(QueryTarget* target) {
  std::erase_if(targets_, [target](const auto& entry) { return entry.second == target; });
}

void ScriptContext::bind(const QString& document, int frameNumber) {
  document_ = document;
  frameNumber_ = frameNumber;
}

void ScriptContext::dispatch(const PageEntry& entry) {
  const auto found = targets_.find(entry.name);
  if (found == targets_.end()) {
    if (entry.kind != PageEntry::kCancel) {
      fail(entry.id, -1, "The query has been canceled");
    }
    return;
  }
  if (entry.kind == PageEntry::kCancel) {
    found->second->cancel(this, entry.id);
    return;
  }
  found->second->query(this, entry.id, fromQt(entry.text),
                       entry.kind == PageEntry::kPersistentQuery);
}

void ScriptContext::succeed(int queryId, const CefString& response) {
  if (channel_) {
    channel_->send(document_, frameNumber_, queryId, std::nullopt, viewOf(response));
  }
}

void ScriptContext::fail(int queryId, int code, const CefString& message) {
  if (channel_) {
    channel_->send(document_, frameNumber_, queryId, code, viewOf(message));
  }
}

void ScriptContext::send(PageChannel::Command command, const QString& text) {
  if (channel_ && isBound()) {
    channel_->send(document_, frameNumber_, command, std::nullopt, text);
  }
}

}  // namespace cef_qt
