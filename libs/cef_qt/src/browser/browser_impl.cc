#include "browser/browser_impl.h"

#include <atomic>

#include "browser/browser_host.h"
#include "browser/browser_list.h"
#include "browser/browser_window.h"
#include "browser/frame_impl.h"
#include "browser/off_screen.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

int nextId() {
  static std::atomic<int> last{0};
  return ++last;
}

}  // namespace

Browser::Browser(const Options& options)
    : id_(nextId()),
      isPopup_(options.isPopup),
      isOffScreen_(options.isOffScreen),
      client_(options.client) {}

Browser::~Browser() = default;

CefRefPtr<Browser> Browser::create(const Options& options) {
  CefRefPtr<Browser> browser = new Browser(options);
  browser->mainFrame_ = new Frame(browser, true, CefString(), nullptr);
  browser->frames_ = std::make_shared<FrameRegistry>(browser.get(), options.extraInfo);
  browser->window_ = std::make_unique<BrowserWindow>(browser.get(), options);
  BrowserList::instance().add(browser);
  return browser;
}

CefRefPtr<CefBrowserHost> Browser::GetHost() {
  if (isOffScreen_) {
    return offScreenFactory()->createHost(this);
  }
  return new BrowserHost(this);
}

bool Browser::IsSame(CefRefPtr<CefBrowser> that) {
  return that && that->GetIdentifier() == id_;
}

bool Browser::IsValid() {
  return client().get() != nullptr;
}

bool Browser::IsLoading() {
  return window_ && window_->isLoading();
}

void Browser::Reload() {
  postTo(TID_UI, [self = CefRefPtr<Browser>(this)] {
    if (self->window_) {
      self->window_->reload();
    }
  });
}

void Browser::StopLoad() {
  postTo(TID_UI, [self = CefRefPtr<Browser>(this)] {
    if (self->window_) {
      self->window_->stop();
    }
  });
}

CefRefPtr<CefFrame> Browser::GetMainFrame() {
  return mainFrame();
}

CefRefPtr<Frame> Browser::mainFrame() {
  const std::lock_guard lock(mutex_);
  return mainFrame_;
}

CefRefPtr<CefClient> Browser::client() {
  const std::lock_guard lock(mutex_);
  return client_;
}

void Browser::openFrames() {
  if (window_) {
    frames_->open(window_->channel());
  }
}

void Browser::startPopup() {
  if (!window_) {
    return;
  }
  openFrames();
  window_->prepareBlankPage();
  window_->show();
  announce();
}

void Browser::announce() {
  const CefRefPtr<CefClient> kept = client();
  if (!kept) {
    return;
  }
  if (const auto handler = kept->GetLifeSpanHandler()) {
    handler->OnAfterCreated(this);
  }
  if (window_) {
    window_->openChannel();
  }
}

void Browser::close(bool force) {
  if (!window_) {
    return;
  }
  if (force) {
    pageAgreedToClose();
  } else {
    window_->askPageToClose();
  }
}

void Browser::pageAgreedToClose() {
  if (closeQueued_ || !window_) {
    return;
  }
  // From a task, because Chromium's callback must not see its page deleted.
  closeQueued_ = postTo(TID_UI, [self = CefRefPtr<Browser>(this)] {
    self->closeQueued_ = false;
    const CefRefPtr<CefClient> kept = self->client();
    if (!kept) {
      return;
    }
    const auto handler = kept->GetLifeSpanHandler();
    if (!handler || !handler->DoClose(self.get())) {
      self->destroy();
    }
  });
}

void Browser::destroy() {
  if (!window_) {
    return;
  }
  if (window_->isBusy()) {
    // A dialog of the page waits inside a callback of Chromium, which the page must outlive.
    window_->endDialogs([self = CefRefPtr<Browser>(this)] { self->destroy(); });
    return;
  }
  const CefRefPtr<Browser> self(this);
  const CefRefPtr<CefClient> kept = client();
  window_->hide();
  frames_->close();
  window_.reset();
  BrowserList::instance().remove(self);
  if (kept) {
    if (const auto handler = kept->GetLifeSpanHandler()) {
      handler->OnBeforeClose(this);
    }
  }
  CefRefPtr<CefClient> releasedClient;
  CefRefPtr<Frame> releasedFrame;
  {
    const std::lock_guard lock(mutex_);
    releasedClient.swap(client_);
    releasedFrame.swap(mainFrame_);
  }
}

}  // namespace cef_qt
