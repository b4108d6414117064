#include "platform/linux/application_icon_linux.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>
#include <QPolygonF>

namespace zantrio {
namespace {

QPixmap drawIcon(int size) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size / 64.0, size / 64.0);
  QLinearGradient ground(0, 0, 0, 64);
  ground.setColorAt(0, QColor(0x3B, 0x82, 0xF6));
  ground.setColorAt(1, QColor(0x1D, 0x4E, 0xD8));
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground);
  painter.drawRoundedRect(QRectF(2, 2, 60, 60), 14, 14);
  painter.setPen(QPen(Qt::white, 7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPolyline(QPolygonF({{20, 20}, {44, 20}, {20, 44}, {44, 44}}));
  return pixmap;
}

}  // namespace

QIcon applicationIcon() {
  QIcon drawn;
  for (const int size : {16, 24, 32, 48, 64, 128}) {
    drawn.addPixmap(drawIcon(size));
  }
  return QIcon::fromTheme(QStringLiteral("zantrio"), drawn);
}

}  // namespace zantrio
