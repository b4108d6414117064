#pragma once

#include <QIcon>

namespace zantrio {

// The desktop's icon "zantrio" where it is installed, else one that is drawn: a white Z on a blue
// square with round corners.
QIcon applicationIcon();

}  // namespace zantrio
