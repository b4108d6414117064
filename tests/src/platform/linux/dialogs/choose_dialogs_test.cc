#include "files/choose_dialogs.h"

#include <gmock/gmock.h>

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

#include "files/file_url.h"
#include "src/platform/linux/event_loop.h"
#include "support/temporary_folder.h"

namespace zantrio {
namespace {

using test::TemporaryFolder;
using test::waitFor;
using test::whenModal;
using testing::ElementsAre;

using Action = std::function<void(QFileDialog&)>;
using Urls = std::vector<std::string>;

template <class Dialog>
bool show(std::unique_ptr<Dialog> dialog, const char* title, Urls& urls, const Action& action) {
  whenModal<QFileDialog>(action);
  dialog->setTitle(title);
  return dialog->show(urls);
}

bool showFiles(Urls& urls, const Action& action) {
  return show(createFileChooseDialog(), "Choose files", urls, action);
}

bool showFolder(Urls& urls, const Action& action) {
  return show(createFolderChooseDialog(), "Choose folder", urls, action);
}

// Types names into the panel and presses its button.
void enterAndConfirm(QFileDialog& panel, const QString& names) {
  panel.findChild<QLineEdit*>()->setText(names);
  auto* button = panel.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open);
  if (!waitFor([button] { return button->isEnabled(); })) {
    ADD_FAILURE() << "the panel rejects " << names.toStdString();
    panel.reject();
    return;
  }
  button->click();
}

QString quoted(const std::string& name) {
  return '"' + QString::fromStdString(name) + '"';
}

TEST(ChooseDialogsLinux, GivesTheUrlsOfSeveralFiles) {
  const TemporaryFolder folder;
  const std::vector<std::string> names = {"a b.txt", "100% \u00E4#?;.txt", std::string(250, 'n')};
  QStringList entered;
  Urls expected;
  for (const std::string& name : names) {
    filePathToUrl(folder.makeFile(name), expected.emplace_back());
    entered << quoted(name);
  }
  Urls urls = {"before"};
  EXPECT_TRUE(showFiles(urls, [&](QFileDialog& panel) {
    EXPECT_EQ(panel.windowTitle(), "Choose files");
    EXPECT_EQ(panel.fileMode(), QFileDialog::ExistingFiles);
    panel.setDirectory(QString::fromStdString(folder.path()));
    enterAndConfirm(panel, entered.join(' '));
  }));
  ASSERT_EQ(urls.size(), 4U);
  EXPECT_EQ(urls[0], "before");
  urls.erase(urls.begin());
  EXPECT_THAT(urls, testing::UnorderedElementsAreArray(expected));
}

TEST(ChooseDialogsLinux, GivesFilesThatAreTypedWithPathsInSeveralFolders) {
  const TemporaryFolder folder;
  const std::string paths[] = {folder.makeFile("a/1"), folder.makeFile("b/2")};
  Urls urls;
  EXPECT_TRUE(showFiles(urls, [&](QFileDialog& panel) {
    panel.setDirectory(QString::fromStdString(folder.path() + "/a"));
    enterAndConfirm(panel, quoted(paths[0]) + ' ' + quoted(paths[1]));
  }));
  EXPECT_THAT(urls, testing::UnorderedElementsAre("file://" + paths[0], "file://" + paths[1]));
}

TEST(ChooseDialogsLinux, GivesTheUrlOfOneFolderWithoutASlash) {
  const TemporaryFolder folder;
  folder.makeFolder("my folder");
  Urls urls;
  EXPECT_TRUE(showFolder(urls, [&](QFileDialog& panel) {
    panel.setDirectory(QString::fromStdString(folder.path()));
    enterAndConfirm(panel, "my folder");
  }));
  EXPECT_THAT(urls, ElementsAre("file://" + folder.path() + "/my%20folder"));
}

TEST(ChooseDialogsLinux, ReturnsFalseAndNothingWhenCancelledOrDestroyed) {
  Urls urls = {"before"};
  EXPECT_FALSE(showFiles(urls, [](QFileDialog& panel) { panel.reject(); }));
  EXPECT_FALSE(showFolder(urls, [](QFileDialog& panel) { panel.close(); }));
  auto* window = new QWidget;
  window->show();
  QApplication::setActiveWindow(window);
  EXPECT_FALSE(showFiles(urls, [window](QFileDialog& panel) {
    EXPECT_EQ(panel.parentWidget(), window);
    delete window;
  }));
  EXPECT_THAT(urls, ElementsAre("before"));
}

TEST(ChooseDialogsLinux, OpensInTheLastFolderOrAtHomeIfItNoLongerExists) {
  Urls urls;
  {
    const TemporaryFolder folder;
    showFiles(urls, [&](QFileDialog& panel) {
      panel.setDirectory(QString::fromStdString(folder.path()));
      panel.reject();
    });
    showFolder(urls, [&](QFileDialog& panel) {
      EXPECT_EQ(panel.directory().path().toStdString(), folder.path());
      panel.reject();
    });
  }
  showFiles(urls, [](QFileDialog& panel) {
    EXPECT_EQ(panel.directory().path(), QDir::homePath());
    panel.reject();
  });
}

}  // namespace
}  // namespace zantrio
