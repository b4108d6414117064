#include "browser/documents.h"

#include "base/qt_text.h"
#include "browser/browser_impl.h"
#include "browser/dialog_scheme.h"
#include "browser/frame_impl.h"
#include "browser/render_side.h"
#include "threads/threads.h"

namespace cef_qt {

Documents::Documents(Browser* browser, CefRefPtr<CefDictionaryValue> extraInfo)
    : browser_(browser), extraInfo_(std::move(extraInfo)) {}

Documents::~Documents() = default;

void Documents::start(PageChannel* channel) {
  const ScopedThread current(TID_RENDERER);
  channel_ = channel;
  if (const auto handler = RenderSide::handler()) {
    handler->OnBrowserCreated(browser_, extraInfo_);
  }
  create(0, browser_->mainFrame());
}

void Documents::stop() {
  const ScopedThread current(TID_RENDERER);
  if (!channel_) {
    return;
  }
  releaseAll();
  channel_ = nullptr;
  if (const auto handler = RenderSide::handler()) {
    handler->OnBrowserDestroyed(browser_);
  }
}

void Documents::receive(const PageEntry& entry) {
  if (!channel_) {
    return;
  }
  if (entry.kind == PageEntry::kHello) {
    greet(entry);
    return;
  }
  // What an earlier document still had to say comes too late.
  const auto found = documents_.find(entry.frame);
  if (entry.document != current_ || found == documents_.end()) {
    return;
  }
  if (entry.kind == PageEntry::kBye) {
    release(entry.frame);
    return;
  }
  const CefRefPtr<ScriptContext> context = found->second.context;
  context->dispatch(entry);
}

void Documents::greet(const PageEntry& entry) {
  if (entry.frame == 0) {
    greetTop(entry);
  } else if (entry.document == current_) {
    greetFrame(entry);
  }
  if (entry.document == current_ && documents_.count(entry.frame) > 0) {
    confirmFunctions(entry);
  }
}

void Documents::greetTop(const PageEntry& entry) {
  if (entry.document == current_) {
    return;
  }
  const auto first = documents_.find(0);
  const bool takesOver = first != documents_.end() && !first->second.context->isBound();
  if (!takesOver) {
    releaseAll();
    create(0, browser_->mainFrame());
  }
  current_ = entry.document;
  browser_->mainFrame()->setName(fromQt(entry.name));
  documents_[0].context->bind(current_, 0);
  if (DialogScheme* dialogs = DialogScheme::current()) {
    dialogs->documentKnown(current_);
  }
}

void Documents::greetFrame(const PageEntry& entry) {
  const CefString url = fromQt(entry.text);
  create(entry.frame, new Frame(browser_, false, fromQt(entry.name), url));
  documents_[entry.frame].context->bind(current_, entry.frame);
}

void Documents::create(int frameNumber, CefRefPtr<Frame> frame) {
  const CefRefPtr<ScriptContext> context = new ScriptContext(browser_, frame, channel_);
  frame->setContext(context);
  documents_[frameNumber] = {frame, context};
  if (const auto handler = RenderSide::handler()) {
    handler->OnContextCreated(browser_, frame, context);
  }
  if (frameNumber == 0 && current_.isEmpty()) {
    RenderSide::learn(true, context->installed());
  }
}

void Documents::confirmFunctions(const PageEntry& entry) {
  const CefRefPtr<ScriptContext> context = documents_[entry.frame].context;
  const bool isTop = entry.frame == 0;
  if (!RenderSide::matches(isTop, context->installed(), entry.id)) {
    context->send(PageChannel::kFunctions, toJson(context->installed()));
  }
  RenderSide::learn(isTop, context->installed());
}

void Documents::release(int frameNumber) {
  const auto found = documents_.find(frameNumber);
  if (found == documents_.end()) {
    return;
  }
  const Document gone = found->second;
  documents_.erase(found);
  gone.context->invalidate();
  if (const auto handler = RenderSide::handler()) {
    handler->OnContextReleased(browser_, gone.frame, gone.context);
  }
  gone.frame->setContext(nullptr);
}

void Documents::releaseAll() {
  const ScopedThread current(TID_RENDERER);
  while (!documents_.empty()) {
    release(documents_.rbegin()->first);
  }
  current_.clear();
}

}  // namespace cef_qt
