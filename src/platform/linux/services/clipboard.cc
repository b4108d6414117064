#include "platform/linux/services/clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <new>

#include "platform/linux/application/application.h"

namespace zantrio {

CClipboardLinux::CClipboardLinux()
    : clipboard_(canShowWidgets() ? QGuiApplication::clipboard() : nullptr) {}

bool CClipboardLinux::copyText(const std::string& text) {
  if (clipboard_ == nullptr) {
    return false;
  }
  const QString copied = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  clipboard_->setText(copied);
  return clipboard_->text() == copied;
}

std::unique_ptr<IClipboard> createClipboard() {
  return std::unique_ptr<IClipboard>(new (std::nothrow) CClipboardLinux);
}

}  // namespace zantrio
