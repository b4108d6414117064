#pragma once

#include <QIcon>
#include <QString>
#include <string>

class QWidget;

namespace zantrio {

// True on the thread of a QApplication that is not shutting down.
bool canShowWidgets();

// The parent for dialogs: the active window, else any visible main window; null if there is none.
QWidget* windowForDialogs();

// Converts UTF-8 for display. Invalid bytes become U+FFFD, and so does U+0000, which would end the
// text in other programs.
QString toShownText(const std::string& text);

// The theme's icon "zantrio" if installed, else a drawn copy.
QIcon applicationIcon();

}  // namespace zantrio
