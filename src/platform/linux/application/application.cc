#include "platform/linux/application/application.h"

#include <QApplication>
#include <QPainter>
#include <QPixmap>
#include <QPolygonF>
#include <QThread>
#include <QWidget>
#include <algorithm>

namespace zantrio {
namespace {

// The same drawing as packaging/zantrio.svg, which the desktop has only where it is installed.
QPixmap drawIcon(int size) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size / 64.0, size / 64.0);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0x0B, 0x6E, 0x7D));
  painter.drawRoundedRect(QRectF(0, 0, 64, 64), 15, 15);
  painter.setPen(QPen(Qt::white, 6.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPolyline(QPolygonF({{17, 20.5}, {44.5, 20.5}, {19.5, 43.5}, {47, 43.5}}));
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0x8F, 0xE3, 0xD3));
  painter.drawEllipse(QPointF(47, 43.5), 5.6, 5.6);
  return pixmap;
}

}  // namespace

bool canShowWidgets() {
  const auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
  return application != nullptr && !QCoreApplication::closingDown() &&
         application->thread() == QThread::currentThread();
}

QWidget* windowForDialogs() {
  const auto isOpenWindow = [](const QWidget* window) {
    return window != nullptr && window->isVisible() && window->windowType() == Qt::Window;
  };
  if (isOpenWindow(QApplication::activeWindow())) {
    return QApplication::activeWindow();
  }
  const QWidgetList windows = QApplication::topLevelWidgets();
  const auto open = std::find_if(windows.begin(), windows.end(), isOpenWindow);
  return open == windows.end() ? nullptr : *open;
}

QString toShownText(const std::string& text) {
  QString shown = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  shown.replace(QChar(QChar::Null), QChar(QChar::ReplacementCharacter));
  return shown;
}

QIcon applicationIcon() {
  QIcon drawn;
  for (const int size : {16, 24, 32, 48, 64, 128}) {
    drawn.addPixmap(drawIcon(size));
  }
  return QIcon::fromTheme(QStringLiteral("zantrio"), drawn);
}

}  // namespace zantrio
