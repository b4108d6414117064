#include "browser/frame_registry.h"

#include <utility>

#include "base/qt_text.h"
#include "browser/browser_impl.h"
#include "browser/dialog_scheme.h"
#include "browser/frame_impl.h"
#include "browser/origin_scheme.h"
#include "browser/render_side.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

// More entries of a document do not wait.
constexpr std::size_t kMaxHeld = 10000;

// Of documents around one another. Chromium allows more, but no page needs them.
constexpr int kMaxDepth = 100;

}  // namespace

FrameRegistry::FrameRegistry(Browser* browser, CefRefPtr<CefDictionaryValue> extraInfo)
    : browser_(browser), extraInfo_(std::move(extraInfo)) {}

FrameRegistry::~FrameRegistry() = default;

void FrameRegistry::open(PageChannel* channel) {
  const ScopedThread current(TID_RENDERER);
  channel_ = channel;
  if (const auto handler = RenderSide::handler()) {
    handler->OnBrowserCreated(browser_, extraInfo_);
  }
  createContext(0, new Frame(browser_, true, CefString(), nullptr));
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
  if (entry.kind == PageEntry::kAsked) {
    settle(entry.frame, OriginScheme::take(found->second.proof));
    return;
  }
  if (mustWait(found->second)) {
    hold(found->second, entry);
    return;
  }
  const CefRefPtr<ScriptContext> context = found->second.context;
  context->dispatch(entry);
}

bool FrameRegistry::mustWait(const Document& document) const {
  const auto top = documents_.find(0);
  return !document.settled || (top != documents_.end() && !top->second.settled);
}

void FrameRegistry::hold(Document& document, const PageEntry& entry) {
  if (document.held.size() < kMaxHeld) {
    document.held.push_back({entry, entry.name.toString(), entry.text.toString()});
  } else if (entry.kind != PageEntry::kCancel) {
    document.context->fail(entry.id, -1, "The query has been canceled");
  }
}

void FrameRegistry::originArrived(const QString& proof) {
  for (const auto& [number, document] : documents_) {
    if (!document.settled && document.proof == proof) {
      settle(number, OriginScheme::take(proof));
      return;
    }
  }
}

void FrameRegistry::introduce(int frameNumber, const PageEntry& entry) {
  Document& document = documents_[frameNumber];
  const QString text = entry.text.toString();
  document.proof = (frameNumber == 0 ? QStringLiteral("top/") : QStringLiteral("frame/")) +
                   text.section(u' ', 0, 0);
  document.url = text.section(u' ', 2);
  if (const auto origin = OriginScheme::take(document.proof)) {
    settle(frameNumber, origin);
  }
}

void FrameRegistry::settle(int frameNumber, const std::optional<QUrl>& origin) {
  const auto found = documents_.find(frameNumber);
  if (found == documents_.end() || found->second.settled) {
    return;
  }
  Document& document = found->second;
  document.settled = true;
  document.frame->setUrl(reliableUrl(document.url, origin.value_or(QUrl())));
  releaseHeld();
}

void FrameRegistry::releaseHeld() {
  for (auto& [number, document] : documents_) {
    if (mustWait(document)) {
      continue;
    }
    const CefRefPtr<ScriptContext> context = document.context;
    for (HeldEntry& held : std::exchange(document.held, {})) {
      held.entry.name = held.name;
      held.entry.text = held.text;
      context->dispatch(held.entry);
    }
  }
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
    createContext(0, new Frame(browser_, true, CefString(), nullptr));
  }
  current_ = entry.document;
  browser_->mainFrame()->setName(fromQt(entry.name));
  documents_[0].frame->setName(fromQt(entry.name));
  documents_[0].context->bind(current_, 0);
  introduce(0, entry);
  if (DialogScheme* dialogs = DialogScheme::current()) {
    dialogs->documentAttached(current_);
  }
}

void FrameRegistry::attachFrame(const PageEntry& entry) {
  createContext(entry.frame, new Frame(browser_, false, fromQt(entry.name), parentOf(entry)));
  documents_[entry.frame].context->bind(current_, entry.frame);
  introduce(entry.frame, entry);
}

CefRefPtr<Frame> FrameRegistry::parentOf(const PageEntry& entry) {
  QStringList origins = entry.text.toString().section(u' ', 1, 1).split(u',', Qt::SkipEmptyParts);
  if (origins.size() > kMaxDepth) {
    origins = QStringList{QStringLiteral("null")};
  }
  CefRefPtr<Frame> parent = documents_[0].frame;
  for (auto origin = origins.crbegin(); origin != origins.crend(); ++origin) {
    parent = new Frame(browser_, false, CefString(), parent);
    parent->setUrl(fromQt(*origin));
  }
  return parent;
}

void FrameRegistry::createContext(int frameNumber, CefRefPtr<Frame> frame) {
  const CefRefPtr<ScriptContext> context = new ScriptContext(browser_, frame, channel_);
  frame->setContext(context);
  frame->setUrl(CefString());  // until the document's is known
  documents_[frameNumber] = {frame, context, {}, {}, false, {}};
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
