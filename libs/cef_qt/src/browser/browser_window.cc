#include "browser/browser_window.h"

#include <QApplication>
#include <QScreen>
#include <QUrl>
#include <QWebEngineSettings>

#include "browser/off_screen.h"
#include "browser/page.h"
#include "browser/profile.h"
#include "browser/render_side.h"
#include "browser/view.h"

namespace cef_qt {
namespace {

constexpr QSize kDefaultSize(1024, 768);

// Moves a rectangle into the screen, and shrinks it if it is too large.
QRect fitIntoScreen(QRect wanted) {
  const QScreen* screen = QGuiApplication::screenAt(wanted.center());
  if (!screen) {
    screen = QGuiApplication::primaryScreen();
  }
  if (!screen) {
    return wanted;
  }
  const QRect room = screen->availableGeometry();
  wanted.setSize(wanted.size().boundedTo(room.size()));
  wanted.moveLeft(std::clamp(wanted.left(), room.left(), room.right() - wanted.width() + 1));
  wanted.moveTop(std::clamp(wanted.top(), room.top(), room.bottom() - wanted.height() + 1));
  return wanted;
}

QUrl urlOf(const QString& text) {
  const QUrl url(text);
  return url.scheme().isEmpty() ? QUrl::fromUserInput(text) : url;
}

void apply(const CefBrowserSettings& settings, QWebEngineSettings* target) {
  target->setAttribute(QWebEngineSettings::JavascriptEnabled,
                       settings.javascript != STATE_DISABLED);
  target->setAttribute(QWebEngineSettings::LocalStorageEnabled,
                       settings.local_storage != STATE_DISABLED);
  target->setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, true);
  // A page from a file reads nothing else: neither other files nor servers.
  target->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, false);
  target->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, true);
  // A file that the page does not take is not opened in its place.
  target->setAttribute(QWebEngineSettings::NavigateOnDropEnabled, false);
}

}  // namespace

BrowserWindow::BrowserWindow(Browser* browser, const Browser::Options& options)
    : channel_(browser->frames()),
      view_(std::make_unique<View>(browser)),
      page_(std::make_unique<Page>(Profile::current(), browser, options.settings)),
      parentWindow_(options.parentWindow) {
  apply(options.settings, page_->settings());
  page_->setWebChannel(channel_.webChannel());
  view_->setPage(page_.get());
  view_->setTitle(options.title);
  if (options.isOffScreen) {
    offScreen_ = offScreenFactory()->createPart(browser, view_.get(),
                                                options.settings.windowless_frame_rate);
  } else {
    setGeometry(options.bounds);
  }
}

BrowserWindow::~BrowserWindow() {
  offScreen_.reset();
  view_->detach();
  page_.reset();
}

QWebEnginePage* BrowserWindow::page() {
  return page_.get();
}

QWidget* BrowserWindow::widget() {
  return offScreen_ ? QApplication::activeWindow() : view_.get();
}

void BrowserWindow::show() {
  view_->show();
  if (offScreen_) {
    return;
  }
  view_->setFocus();
}

void BrowserWindow::hide() {
  view_->hide();
}

void BrowserWindow::setFocus(bool focus) {
  if (offScreen_) {
    offScreen_->setFocus(focus);
    return;
  }
  if (focus) {
    view_->activateWindow();
    view_->setFocus();
  } else {
    view_->clearFocus();
  }
}

void BrowserWindow::setGeometry(const CefRect& bounds) {
  if (offScreen_) {
    return;  // the client decides its size
  }
  const QRect wanted(bounds.x, bounds.y, bounds.IsEmpty() ? kDefaultSize.width() : bounds.width,
                     bounds.IsEmpty() ? kDefaultSize.height() : bounds.height);
  view_->setGeometry(fitIntoScreen(wanted));
}

CefWindowHandle BrowserWindow::handle() {
  return offScreen_ ? parentWindow_ : static_cast<CefWindowHandle>(view_->winId());
}

QString BrowserWindow::url() const {
  return QString::fromLatin1(page_->url().toEncoded());
}

void BrowserWindow::load(const QString& url) {
  page_->load(urlOf(url));
}

void BrowserWindow::reload() {
  page_->triggerAction(QWebEnginePage::Reload);
}

void BrowserWindow::stop() {
  page_->triggerAction(QWebEnginePage::Stop);
}

bool BrowserWindow::isLoading() const {
  return page_->isLoading();
}

int BrowserWindow::httpStatus() const {
  return page_->httpStatus();
}

void BrowserWindow::runScript(const QString& script) {
  channel_.flush();
  page_->runJavaScript(script);
}

void BrowserWindow::askPageToClose() {
  page_->askToClose();
}

void BrowserWindow::ownScript() {
  page_->ownScript();
}

bool BrowserWindow::isBusy() const {
  return page_->dialogDepth() > 0;
}

void BrowserWindow::endDialogs(std::function<void()> next) {
  page_->whenIdle(std::move(next));
  page_->endDialogs();
}

void BrowserWindow::prepareBlankPage() {
  // Forces a first layout, without which Chromium crashed when the document was filled and painted.
  // Printing would do so too, but Qt hands its result to the page even after the page's end.
  page_->runJavaScript(QStringLiteral("void document.documentElement.offsetHeight"));
  page_->runJavaScript(RenderSide::currentScript());
}

}  // namespace cef_qt
