// A window from which the given files can be dragged, as from a file manager: drag_source FILE...
//
// It prints "ready" when it is shown in the display's upper left corner, "offered N" during a drag
// when the target's action changes (1: copy, 0: refused), and "dropped N" after the drop.

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
  explicit DragSource(const QStringList& arguments) : QLabel("Drag me"), arguments_(arguments) {
    setWindowFlags(Qt::X11BypassWindowManagerHint);
    setGeometry(0, 0, 100, 60);
  }

 protected:
  void mouseMoveEvent(QMouseEvent* event) override {
    if (!(event->buttons() & Qt::LeftButton)) {
      return;
    }
    auto* drag = new QDrag(this);
    drag->setMimeData(makeContent());
    connect(drag, &QDrag::actionChanged, [](Qt::DropAction action) { report("offered", action); });
    const Qt::DropAction action = drag->exec(Qt::CopyAction, Qt::CopyAction);
    report("dropped", action);
  }

 private:
  QMimeData* makeContent() const {
    auto* content = new QMimeData;
    QList<QUrl> urls;
    for (const QString& path : arguments_) {
      urls << QUrl::fromLocalFile(path);
    }
    content->setUrls(urls);
    return content;
  }

  static void report(const char* what, Qt::DropAction action) {
    std::printf("%s %d\n", what, static_cast<int>(action));
    std::fflush(stdout);
  }

  const QStringList arguments_;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  DragSource source(QApplication::arguments().mid(1));
  source.show();
  source.raise();
  QTimer::singleShot(0, [] {
    std::puts("ready");
    std::fflush(stdout);
  });
  return QApplication::exec();
}
