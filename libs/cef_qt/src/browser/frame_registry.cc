#include "browser/frame_registry.h"

#include "base/qt_text.h"
#include "browser/browser_impl.h"
#include "browser/dialog_scheme.h"
#include "browser/frame_impl.h"
#include "browser/render_side.h"
#include "threads/threads.h"

namespace cef_qt {

FrameRegistry::FrameRegistry(Browser* browser, CefRefPtr<CefDictionaryValue> extraInfo)
    : browser_(browser), extraInfo_(std::move(extraInfo)) {}

FrameRegistry::~FrameRegistry() = default;

void FrameRegistry::open(PageChannel* channel) {
  const ScopedThread current(TID_RENDERER);
  channel_ = channel;
  if (const auto handler = RenderSide::handler()) {
    handler->OnBrowserCreated(browser_, extraInfo_);
  }
  createContext(0, browser_->mainFrame());
}

void FrameRegistry::close() {
  const ScopedThread current(TID_RENDERER);
  if (!channel_) {
    return;
  }
  detachAll();
  channel_ = nullptr;
  if (const auto handler = RenderSide::handler()) {
    handler->OnBrowserDestroyed(browser_);
  }
}

void FrameRegistry::receive(const PageEntry& entry) {
  if (!channel_) {
    return;
  }
  if (entry.kind == PageEntry::kAttach) {
    attach(entry);
    return;
  }
  // Entries of an earlier document are stale.
  const auto found = documents_.find(entry.frame);
  if (entry.document != current_ || found == documents_.end()) {
    return;
  }
  if (entry.kind == PageEntry::kDetach) {
    detach(entry.frame);
    return;
  }
  const CefRefPtr<ScriptContext> context = found->second.context;
  context->dispatch(entry);
}

void FrameRegistry::attach(const PageEntry& entry) {
  if (entry.frame == 0) {
    attachTop(entry);
  } else if (entry.document == current_) {
    attachFrame(entry);
  }
  if (entry.document == current_ && documents_.count(entry.frame) > 0) {
    correctFunctions(entry);
  }
}

void FrameRegistry::attachTop(const PageEntry& entry) {
  if (entry.document == current_) {
    return;
  }
  const auto top = documents_.find(0);
  const bool isFirstDocument = top != documents_.end() && !top->second.context->isBound();
  if (!isFirstDocument) {
    detachAll();
    createContext(0, browser_->mainFrame());
  }
  current_ = entry.document;
  browser_->mainFrame()->setName(fromQt(entry.name));
  documents_[0].context->bind(current_, 0);
  if (DialogScheme* dialogs = DialogScheme::current()) {
    dialogs->documentAttached(current_);
  }
}

void FrameRegistry::attachFrame(const PageEntry& entry) {
  const CefString url = fromQt(entry.text);
  createContext(entry.frame, new Frame(browser_, false, fromQt(entry.name), url));
  documents_[entry.frame].context->bind(current_, entry.frame);
}

void FrameRegistry::createContext(int frameNumber, CefRefPtr<Frame> frame) {
  const CefRefPtr<ScriptContext> context = new ScriptContext(browser_, frame, channel_);
  frame->setContext(context);
  documents_[frameNumber] = {frame, context};
  if (const auto handler = RenderSide::handler()) {
    handler->OnContextCreated(browser_, frame, context);
  }
  if (frameNumber == 0 && current_.isEmpty()) {
    RenderSide::recordFunctions(true, context->installed());
  }
}

void FrameRegistry::correctFunctions(const PageEntry& entry) {
  const CefRefPtr<ScriptContext> context = documents_[entry.frame].context;
  const bool isTop = entry.frame == 0;
  if (!RenderSide::scriptGave(isTop, context->installed(), entry.id)) {
    context->send(PageChannel::kFunctions, toJson(context->installed()));
  }
  RenderSide::recordFunctions(isTop, context->installed());
}

void FrameRegistry::detach(int frameNumber) {
  const auto found = documents_.find(frameNumber);
  if (found == documents_.end()) {
    return;
  }
  const Document detached = found->second;
  documents_.erase(found);
  detached.context->invalidate();
  if (const auto handler = RenderSide::handler()) {
    handler->OnContextReleased(browser_, detached.frame, detached.context);
  }
  detached.frame->setContext(nullptr);
}

void FrameRegistry::detachAll() {
  const ScopedThread current(TID_RENDERER);
  while (!documents_.empty()) {
    detach(documents_.rbegin()->first);
  }
  current_.clear();
}

}  // namespace cef_qt
