// Behaviour that needs Qt's own events: drags over the window, closing it, the framework's default
// dialogs, and nested loops inside handlers.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDragEnterEvent>
#include <QInputDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QTest>
#include <QTextDocument>
#include <QTimer>
#include <QUrl>
#include <QWebEngineView>

#include "include/base/cef_bind.h"
#include "include/cef_task.h"
#include "include/wrapper/cef_closure_task.h"
#include "support/framework.h"
#include "support/test_browser.h"

namespace cef_test {
namespace {

QWebEngineView* viewOf(const CefRefPtr<CefBrowser>& browser) {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* view = qobject_cast<QWebEngineView*>(widget);
    if (view && view->winId() == browser->GetHost()->GetWindowHandle()) {
      return view;
    }
  }
  return nullptr;
}

bool enter(QWebEngineView* view, const QMimeData& data) {
  QDragEnterEvent event(QPoint(50, 50), Qt::CopyAction | Qt::LinkAction, &data, Qt::LeftButton,
                        Qt::NoModifier);
  QApplication::sendEvent(view, &event);
  return event.isAccepted();
}

void drop(QWebEngineView* view, const QMimeData& data) {
  QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(view, &event);
}

template <class Dialog>
Dialog* openDialog() {
  Dialog* found = nullptr;
  runUntil([&] {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* dialog = qobject_cast<Dialog*>(widget);
      if (dialog && dialog->isVisible()) {
        found = dialog;
      }
    }
    return found != nullptr;
  });
  return found;
}

constexpr char kDropPage[] = R"(<body style='height: 400px'><script>
  addEventListener('dragenter', event => { event.preventDefault(); testQuery({request: 'enter'}); });
  addEventListener('dragover', event => event.preventDefault());
  addEventListener('drop', event => { event.preventDefault();
    testQuery({request: 'drop ' + [...event.dataTransfer.files].map(f => f.name).join()}); });
  requestAnimationFrame(() => requestAnimationFrame(() => testQuery({request: 'up'})));
</script>)";

TEST(View, ShowsDragsToTheClientWhichCanHideThemFromThePage) {
  TestBrowser page(kDropPage);
  ASSERT_TRUE(page.waitFor("up"));
  QWebEngineView* view = viewOf(page.browser());
  ASSERT_TRUE(view);
  QMimeData text;
  text.setText("words");
  page.client().onDrag = [](CefRefPtr<CefDragData> dragged, unsigned int) {
    EXPECT_EQ(dragged->GetFragmentText(), "words");
    return true;
  };
  EXPECT_FALSE(enter(view, text));
  drop(view, text);

  const std::string url = writePage("dragged file.txt", "contents");
  QMimeData file;
  file.setUrls({QUrl(QString::fromStdString(url))});
  std::vector<CefString> paths;
  unsigned int mask = 0;
  page.client().onDrag = [&](CefRefPtr<CefDragData> dragged, unsigned int operations) {
    EXPECT_TRUE(dragged->IsFile() && dragged->IsReadOnly());
    EXPECT_FALSE(dragged->IsLink() || dragged->IsFragment());
    dragged->GetFilePaths(paths);
    mask = operations;
    return false;
  };
  EXPECT_TRUE(enter(view, file));
  EXPECT_EQ(paths, std::vector<CefString>{temporaryFolder() + "/dragged file.txt"});
  EXPECT_EQ(mask, unsigned{DRAG_OPERATION_COPY} | unsigned{DRAG_OPERATION_LINK});
  EXPECT_TRUE(page.waitFor("enter"));
  drop(view, file);
  EXPECT_TRUE(page.waitFor("drop dragged file.txt"));
  EXPECT_EQ(page.client().requests.size(), 3u);  // of the hidden drag the page has seen nothing
}

TEST(View, HasTheGivenTitleAndSizeAndItsClosingIsTheBrowsers) {
  TestBrowser page("<title>the page's</title><script>testQuery({request: 'up'})</script>");
  ASSERT_TRUE(page.waitFor("up"));
  const QWebEngineView* view = viewOf(page.browser());
  EXPECT_EQ(view->windowTitle(), "Test");
  EXPECT_EQ(view->size(), QSize(640, 480));
  EXPECT_TRUE(view->isVisible());
  page.client().doClose = [] { return true; };
  viewOf(page.browser())->close();
  ASSERT_TRUE(page.waitForEvent("doClose"));
  EXPECT_TRUE(viewOf(page.browser())->isVisible());
  page.client().doClose = [] { return false; };
  viewOf(page.browser())->close();
  EXPECT_TRUE(page.waitForEvent("closed"));
}

TEST(View, StaysWhenTheUserRefusesToLeaveThePage) {
  TestBrowser page(
      "<body style='height: 400px'><script>onbeforeunload = event => "
      "event.preventDefault() || 'stay'; onclick = () => testQuery({request: "
      "'clicked'}); requestAnimationFrame(() => requestAnimationFrame(() => "
      "testQuery({request: 'up'})))</script>");
  ASSERT_TRUE(page.waitFor("up"));
  // Chromium ignores beforeunload without a user gesture.
  QTest::mouseClick(viewOf(page.browser())->focusProxy(), Qt::LeftButton, {}, QPoint(50, 50));
  ASSERT_TRUE(page.waitFor("clicked"));
  for (const bool leaves : {false, true}) {
    page.browser()->GetHost()->CloseBrowser(false);
    auto* box = openDialog<QMessageBox>();
    ASSERT_TRUE(box);
    EXPECT_EQ(page.evaluate("'alive'"), "alive");
    EXPECT_EQ(page.client().events.back(), "created");
    if (leaves) {
      box->button(QMessageBox::Ok)->click();
    } else {
      box->reject();
      EXPECT_EQ(page.evaluate("'still here'"), "still here");
    }
  }
  EXPECT_TRUE(page.waitForEvent("closed"));
}

TEST(View, ShowsTheDialogsThatTheClientLeavesToIt) {
  TestBrowser page("");
  page.run("testQuery({request: 'confirm ' + confirm('<b>sure?')})");
  auto* box = openDialog<QMessageBox>();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "<b>sure?");
  box->button(QMessageBox::Ok)->click();
  EXPECT_TRUE(page.waitFor("confirm true"));

  page.run("testQuery({request: 'prompt ' + prompt('<Tom> & Jerry', 'proposal')})");
  auto* prompt = openDialog<QInputDialog>();
  ASSERT_TRUE(prompt);
  QTextDocument shown;
  shown.setHtml(prompt->labelText());
  EXPECT_EQ(shown.toPlainText(), "<Tom> & Jerry");
  EXPECT_TRUE(Qt::mightBeRichText(prompt->labelText()));
  EXPECT_EQ(prompt->textValue(), "proposal");
  prompt->setTextValue("chosen");
  prompt->accept();
  EXPECT_TRUE(page.waitFor("prompt chosen"));
}

// Runs a nested loop until the condition holds, like a modal dialog.
bool runNested(const std::function<bool()>& condition) {
  return QTest::qWaitFor(condition, 30000);
}

TEST(NestedLoop, InAHandlerKeepsThePageAndItsQueriesAlive) {
  TestBrowser page(
      "<script>const ask = request => new Promise(onSuccess => testQuery({request, "
      "onSuccess}))</script>");
  bool nested = false;
  bool lastSeen = false;
  page.client().onQuery = [&](const Query& query) {
    if (query.request == "modal") {
      nested = true;
      EXPECT_TRUE(runNested([&] { return lastSeen; }));
      nested = false;
    } else if (query.request == "99") {
      EXPECT_TRUE(nested);
      lastSeen = true;
    }
    query.callback->Success(query.request);
    return true;
  };
  EXPECT_EQ(page.evaluate("(async () => { const modal = ask('modal');"
                          "for (let i = 0; i < 100; ++i) { await ask(String(i));"
                          "  await new Promise(requestAnimationFrame); }"
                          "return modal; })()"),
            "modal");
}

// A loop without other wake-ups.
class QuietLoop {
 public:
  QuietLoop() {
    QTimer::singleShot(30000, &loop_, [this] { loop_.exit(1); });
  }
  bool reachesItsEnd() { return loop_.exec() == 0; }
  void end() { loop_.quit(); }

 private:
  QEventLoop loop_;
};

TEST(Tasks, NeedNoOtherWakeUpForTheirDeferredDeletesOrWhenPostedByTheLoopItself) {
  QuietLoop deleting;
  auto* object = new QObject;
  QObject::connect(object, &QObject::destroyed, [&] { deleting.end(); });
  CefPostTask(TID_UI, base::BindOnce([](QObject* doomed) { doomed->deleteLater(); }, object));
  EXPECT_TRUE(deleting.reachesItsEnd());

  QuietLoop posting;
  QTimer::singleShot(1, [&] {
    CefPostTask(TID_UI, base::BindOnce([](QuietLoop* quiet) { quiet->end(); }, &posting));
  });
  EXPECT_TRUE(posting.reachesItsEnd());
}

TEST(NestedLoop, InAHandlerMayOutliveItsBrowser) {
  TestBrowser page("<script>testQuery({request: 'close me'})</script>");
  page.client().onQuery = [&](const Query& query) {
    query.browser->GetHost()->CloseBrowser(true);
    EXPECT_TRUE(runNested([&] { return page.client().browsers.empty(); }));
    query.callback->Success("");
    return true;
  };
  EXPECT_TRUE(page.waitForEvent("closed"));
}

}  // namespace
}  // namespace cef_test
