#pragma once

#include <QIcon>

namespace zantrio {

// The desktop's icon "zantrio" where it is installed, else the same drawn here.
QIcon applicationIcon();

}  // namespace zantrio
