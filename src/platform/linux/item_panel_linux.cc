#include "platform/linux/item_panel_linux.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QPointer>
#include <QUrl>
#include <exception>

#include "files/file_url.h"
#include "platform/linux/application_linux.h"

namespace zantrio {
namespace {

// Where the last dialog was left; empty until one was answered.
QString& lastFolder() {
  static QString folder;
  return folder;
}

void setSelectionRules(QFileDialog& panel, ItemPanelKind kind) {
  const bool forFolder = kind == ItemPanelKind::kFolder;
  panel.setAcceptMode(QFileDialog::AcceptOpen);
  panel.setFileMode(forFolder ? QFileDialog::Directory : QFileDialog::ExistingFiles);
  panel.setOption(QFileDialog::ShowDirsOnly, forFolder);
  panel.setSupportedSchemes({QStringLiteral("file")});
}

void setStartFolder(QFileDialog& panel) {
  panel.setDirectory(QDir(lastFolder()).exists() && !lastFolder().isEmpty() ? lastFolder()
                                                                            : QDir::homePath());
}

std::vector<std::string> chosenIn(const QFileDialog& panel) {
  std::vector<std::string> urls;
  for (const QUrl& chosen : panel.selectedUrls()) {
    if (chosen.isLocalFile()) {
      filePathToUrl(QFile::encodeName(chosen.toLocalFile()).toStdString(), urls.emplace_back());
    }
  }
  return urls;
}

bool runPanel(ItemPanelKind kind, const std::string& title, std::vector<std::string>& chosenUrls) {
  // The window that the panel belongs to may go, and take it along, while it is open.
  const QPointer<QFileDialog> panel(new QFileDialog(windowForDialogs(), toShownText(title)));
  setSelectionRules(*panel, kind);
  setStartFolder(*panel);
  panel->resize(860, 540);
  const bool accepted = panel->exec() == QDialog::Accepted && panel;
  if (panel) {
    lastFolder() = panel->directory().absolutePath();
  }
  const std::vector<std::string> urls = accepted ? chosenIn(*panel) : std::vector<std::string>();
  delete panel;
  chosenUrls.insert(chosenUrls.end(), urls.begin(), urls.end());
  return !urls.empty();
}

}  // namespace

bool runItemPanel(ItemPanelKind kind, const std::string& title,
                  std::vector<std::string>& chosenUrls) {
  if (!canShowWidgets()) {
    return false;
  }
  try {
    return runPanel(kind, title, chosenUrls);
  } catch (const std::exception&) {
    return false;  // to the caller the same as a cancel
  }
}

}  // namespace zantrio
