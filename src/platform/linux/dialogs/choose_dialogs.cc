#include "platform/linux/dialogs/choose_dialogs.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QPointer>
#include <QSettings>
#include <QSplitter>
#include <QStandardPaths>
#include <QTreeView>
#include <QUrl>
#include <exception>
#include <new>

#include "app/log/logger.h"
#include "files/file_url.h"
#include "platform/linux/application/application.h"

namespace zantrio {
namespace {

enum class ItemPanelKind { kFiles, kFolder };

// The last folder of the dialogs, stored in the user's configuration.
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

// The usual folders for the side bar, if they exist.
QList<QUrl> sidebarFolders() {
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

// Affects only Qt's own dialog; a native one ignores it.
void setAppearance(QFileDialog& panel) {
  panel.resize(860, 540);
  panel.setSidebarUrls(sidebarFolders());
  if (auto* splitter = panel.findChild<QSplitter*>()) {
    splitter->setSizes({160, 700});
  }
  if (const auto* list = panel.findChild<QTreeView*>()) {
    list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list->header()->setSectionResizeMode(0, QHeaderView::Stretch);  // the names
  }
}

// Qt's dialog drops typed paths that lie in other folders than the one it shows.
QStringList typedAbsoluteFiles(const QFileDialog& panel) {
  const auto* const field = panel.findChild<QLineEdit*>();
  const QStringList words = field ? field->text().split('"') : QStringList();
  QStringList files;
  for (qsizetype quoted = 1; quoted < words.size(); quoted += 2) {
    if (const QFileInfo file(words[quoted]); file.isAbsolute() && file.isFile()) {
      files << file.filePath();
    }
  }
  return files;
}

// Folders have no slash at the end, because the page takes their names from the last component.
std::vector<std::string> chosenIn(const QFileDialog& panel, ItemPanelKind kind) {
  QStringList paths;
  for (const QUrl& chosen : panel.selectedUrls()) {
    paths << chosen.adjusted(QUrl::StripTrailingSlash).toLocalFile();
  }
  if (kind == ItemPanelKind::kFiles) {
    paths << typedAbsoluteFiles(panel);
  }
  paths.removeDuplicates();
  paths.removeAll(QString());  // not local
  std::vector<std::string> urls;
  for (const QString& path : paths) {
    filePathToUrl(QFile::encodeName(path).toStdString(), false, urls.emplace_back());
  }
  return urls;
}

bool runPanel(ItemPanelKind kind, const std::string& title, std::vector<std::string>& chosenUrls) {
  // The parent window may be destroyed, with the panel, while the panel is open.
  const QPointer<QFileDialog> panel(new QFileDialog(windowForDialogs(), toShownText(title)));
  panel->setWindowModality(Qt::WindowModal);  // leaves open notices usable
  setSelectionRules(*panel, kind);
  LastFolder lastFolder;
  panel->setDirectory(lastFolder.get());
  setAppearance(*panel);
  const bool accepted = panel->exec() == QDialog::Accepted && panel;
  if (panel) {
    lastFolder.set(panel->directory().absolutePath());
  }
  const std::vector<std::string> urls =
      accepted ? chosenIn(*panel, kind) : std::vector<std::string>();
  delete panel;
  chosenUrls.insert(chosenUrls.end(), urls.begin(), urls.end());
  return !urls.empty();
}

// Runs the file dialog modally (see IFileChooseDialog::show). It opens in the last dialog's folder,
// also of an earlier run, at first in the home folder. Answers an exception as a cancelled dialog
// and logs it.
bool runItemPanel(ItemPanelKind kind, const std::string& title,
                  std::vector<std::string>& chosenUrls) {
  if (!canShowWidgets()) {
    return false;
  }
  try {
    return runPanel(kind, title, chosenUrls);
  } catch (const std::exception& exception) {
    logError("The file dialog failed: ", exception.what(), "; it counts as cancelled");
    return false;
  }
}

}  // namespace

bool CFileChooseDialogLinux::show(std::vector<std::string>& chosenUrls) {
  return runItemPanel(ItemPanelKind::kFiles, title(), chosenUrls);
}

std::unique_ptr<IFileChooseDialog> createFileChooseDialog() {
  return std::unique_ptr<IFileChooseDialog>(new (std::nothrow) CFileChooseDialogLinux);
}

bool CFolderChooseDialogLinux::show(std::vector<std::string>& chosenUrls) {
  return runItemPanel(ItemPanelKind::kFolder, title(), chosenUrls);
}

std::unique_ptr<IFolderChooseDialog> createFolderChooseDialog() {
  return std::unique_ptr<IFolderChooseDialog>(new (std::nothrow) CFolderChooseDialogLinux);
}

}  // namespace zantrio
