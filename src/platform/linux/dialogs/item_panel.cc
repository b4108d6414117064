#include "platform/linux/dialogs/item_panel.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QPointer>
#include <QSettings>
#include <QSplitter>
#include <QStandardPaths>
#include <QTreeView>
#include <QUrl>
#include <exception>

#include "files/file_url.h"
#include "platform/linux/application/application.h"

namespace zantrio {
namespace {

// Where the dialogs were left, kept in the user's configuration folder.
class LastFolder {
 public:
  QString get() const {
    const QString folder = settings_.value(kKey).toString();
    return !folder.isEmpty() && QDir(folder).exists() ? folder : QDir::homePath();
  }
  void set(const QString& folder) { settings_.setValue(kKey, folder); }

 private:
  static inline const QString kKey = QStringLiteral("dialogs/lastFolder");
  QSettings settings_{QStringLiteral("Zantrio"), QStringLiteral("Zantrio")};
};

void setSelectionRules(QFileDialog& panel, ItemPanelKind kind) {
  const bool forFolder = kind == ItemPanelKind::kFolder;
  panel.setAcceptMode(QFileDialog::AcceptOpen);
  panel.setFileMode(forFolder ? QFileDialog::Directory : QFileDialog::ExistingFiles);
  panel.setOption(QFileDialog::ShowDirsOnly, forFolder);
  panel.setSupportedSchemes({QStringLiteral("file")});
}

// The places that people keep their files in, where they exist.
QList<QUrl> usualPlaces() {
  QList<QUrl> places = {QUrl(QStringLiteral("file:"))};  // the whole computer
  for (const auto location : {QStandardPaths::HomeLocation, QStandardPaths::DesktopLocation,
                              QStandardPaths::DocumentsLocation, QStandardPaths::DownloadLocation,
                              QStandardPaths::PicturesLocation, QStandardPaths::MoviesLocation}) {
    const QUrl place = QUrl::fromLocalFile(QStandardPaths::writableLocation(location));
    if (QDir(place.toLocalFile()).exists() && !places.contains(place)) {
      places.append(place);
    }
  }
  return places;
}

// Concerns the toolkit's own panel only; the desktop's has its looks from the desktop.
void setLooks(QFileDialog& panel) {
  panel.resize(860, 540);
  panel.setSidebarUrls(usualPlaces());
  if (auto* splitter = panel.findChild<QSplitter*>()) {
    splitter->setSizes({160, 700});
  }
  if (const auto* list = panel.findChild<QTreeView*>()) {
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);  // the names
  }
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
  panel->setWindowModality(Qt::WindowModal);  // notices that stand beside it can be dismissed
  setSelectionRules(*panel, kind);
  LastFolder lastFolder;
  panel->setDirectory(lastFolder.get());
  setLooks(*panel);
  const bool accepted = panel->exec() == QDialog::Accepted && panel;
  if (panel) {
    lastFolder.set(panel->directory().absolutePath());
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
