#pragma once

#include <QMessageBox>
#include <memory>
#include <string>

namespace zantrio {

// Makes a box without buttons that shows `text` (UTF-8) as plain text, with an empty header, and
// belongs to `parent`, which may be null. However long the text or a word in it is, the box fits on
// the screen; of a very long text it shows the beginning, and the whole behind "Show Details".
std::unique_ptr<QMessageBox> makeMessageBox(const std::string& text, QMessageBox::Icon icon,
                                            QWidget* parent);

}  // namespace zantrio
