#pragma once

#include <QString>
#include <string>

class QWidget;

namespace zantrio {

// Whether there is an application object that can show widgets, and this is its thread.
bool canShowWidgets();

// The window that a dialog belongs to: the active one, else any window of the application that is
// visible and no dialog itself; null for none.
QWidget* windowForDialogs();

// UTF-8 for the toolkit; what is no UTF-8 shows as U+FFFD, and so does U+0000, which would end the
// text in other programs.
QString toShownText(const std::string& text);

}  // namespace zantrio
