// The top-level view of a browser.
#pragma once

#include <QWebEngineView>

namespace cef_qt {

class Browser;

// Asks the client about drags from outside. Closing the window closes the browser.
class View final : public QWebEngineView {
  Q_OBJECT

 public:
  explicit View(Browser* browser) : browser_(browser) {}

  // An empty title makes the window follow the page's title.
  void setTitle(const QString& title);
  // Called before the browser's page is destroyed.
  void detach() { browser_ = nullptr; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  bool isOwnDrag(const QDragEnterEvent& event) const;

  Browser* browser_;
  bool dragCanceled_ = false;
};

}  // namespace cef_qt
