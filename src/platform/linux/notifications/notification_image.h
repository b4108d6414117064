#pragma once

#include <QIcon>
#include <QVariant>

namespace zantrio {

// An icon as the notifications' hint "image-data". Needs an application that can show widgets.
QVariant notificationImage(const QIcon& icon);

}  // namespace zantrio
