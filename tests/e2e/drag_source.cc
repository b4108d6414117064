// A window from which the given files can be dragged, as from a file manager.
//
//   drag_source FILE...
//
// It prints "ready" once it is shown in the display's upper left corner, during a drag the action
// that the target offers when it changes ("offered 1" is a copy, "offered 0" a refusal), and after
// it the one that was taken ("dropped 1").

#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QTimer>
#include <QUrl>
#include <cstdio>

namespace {

class DragSource : public QLabel {
 public:
  explicit DragSource(QList<QUrl> urls) : QLabel("Drag me"), urls_(std::move(urls)) {
    setWindowFlags(Qt::X11BypassWindowManagerHint);
    setGeometry(0, 0, 100, 60);
  }

 protected:
  void mouseMoveEvent(QMouseEvent* event) override {
    if (!(event->buttons() & Qt::LeftButton)) {
      return;
    }
    auto* content = new QMimeData;
    content->setUrls(urls_);
    auto* drag = new QDrag(this);
    drag->setMimeData(content);
    connect(drag, &QDrag::actionChanged, [](Qt::DropAction action) { tell("offered", action); });
    const Qt::DropAction action = drag->exec(Qt::CopyAction, Qt::CopyAction);
    tell("dropped", action);
  }

 private:
  static void tell(const char* what, Qt::DropAction action) {
    std::printf("%s %d\n", what, static_cast<int>(action));
    std::fflush(stdout);
  }

  QList<QUrl> urls_;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QList<QUrl> urls;
  for (const QString& path : QApplication::arguments().mid(1)) {
    urls << QUrl::fromLocalFile(path);
  }
  DragSource source(urls);
  source.show();
  source.raise();
  QTimer::singleShot(0, [] {
    std::puts("ready");
    std::fflush(stdout);
  });
  return QApplication::exec();
}
