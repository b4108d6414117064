// The view with a real page: Qt's events, and the view's picture and replies.
#include "platform/linux/view/client_opengl_view.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QInputMethodEvent>
#include <QTest>
#include <QTextCharFormat>

#include "osr/client_osr_handler.h"
#include "support/framework.h"
#include "support/test_browser.h"

namespace client::test {
namespace {

using cef_test::runUntil;
using cef_test::TestBrowser;
using cef_test::TestClient;

class ShownPage {
 public:
  explicit ShownPage(const std::string& html) : page_(html, client()) {
    provider_ = page_.browser();
    page_.browser()->GetHost()->WasResized();
    view_->activateWindow();
    EXPECT_TRUE(page_.becomes("document.readyState + innerWidth", "complete300"));
    // A page that has not been drawn takes no input.
    EXPECT_EQ(page_.evaluate("new Promise(done => requestAnimationFrame(() => "
                             "requestAnimationFrame(() => done('drawn'))))"),
              "drawn");
  }
  ~ShownPage() { view_->browserClosed(); }

  ClientOpenGLView& view() { return *view_; }
  TestBrowser& page() { return page_; }

  void click(const QPoint& point) { QTest::mouseClick(view_.get(), Qt::LeftButton, {}, point); }

 private:
  CefRefPtr<TestClient> client() {
    OffScreenViewOptions options;
    options.bounds = CefRect(0, 0, 300, 200);
    options.browserProvider = [this] { return provider_; };
    std::string error;
    view_ = ClientOpenGLView::open(options, error);
    EXPECT_TRUE(view_) << error;
    CefRefPtr<TestClient> result(new TestClient);
    const CefRefPtr<RenderHandler> handler = OSRWindow::Create(view_)->GetRenderHandler();
    result->renderHandler = handler;
    result->displayHandler = handler;
    return result;
  }

  CefRefPtr<CefBrowser> provider_;
  std::shared_ptr<ClientOpenGLView> view_;
  TestBrowser page_;
};

constexpr char kFields[] = R"(<style>body { margin: 0 }
  input { position: absolute; left: 20px; width: 200px; height: 24px; border: 0; padding: 0 }
  #field { top: 30px } #mail { top: 60px }</style>
  <input id=field><input id=mail type=email><script>seen = [];
  for (const name of ['compositionstart', 'compositionupdate', 'compositionend'])
    addEventListener(name, event => seen.push(name.slice(11) + ' ' + event.data));
  </script>)";

class InputMethod {
 public:
  explicit InputMethod(ClientOpenGLView& view) : view_(view) {}

  void compose(const QString& text, int caret) {
    QTextCharFormat format;
    format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
    QInputMethodEvent event(text, {{QInputMethodEvent::TextFormat, 0, int(text.size()), format},
                                   {QInputMethodEvent::Cursor, caret, 1, QVariant()}});
    QApplication::sendEvent(&view_, &event);
  }
  // Marks the last clause, as some input methods do: with a negative length.
  void composeWithClause(const QString& text, int length) {
    QTextCharFormat format;
    format.setBackground(Qt::green);
    const int end = static_cast<int>(text.size());
    QInputMethodEvent event(text, {{QInputMethodEvent::TextFormat, end, -length, format}});
    QApplication::sendEvent(&view_, &event);
  }
  void commit(const QString& text, int from = 0, int length = 0) {
    QInputMethodEvent event;
    event.setCommitString(text, from, length);
    QApplication::sendEvent(&view_, &event);
  }
  QVariant ask(Qt::InputMethodQuery query) {
    QInputMethodQueryEvent event(query);
    QApplication::sendEvent(&view_, &event);
    return event.isAccepted() ? event.value(query) : QVariant();
  }

 private:
  ClientOpenGLView& view_;
};

TEST(ClientOpenGLViewLinux, ShowsWhichClauseOfACompositionStandsOut) {
  ShownPage shown(kFields);
  InputMethod method(shown.view());
  EXPECT_FALSE(method.ask(Qt::ImEnabled).toBool());
  shown.click({100, 40});
  ASSERT_TRUE(runUntil([&] { return method.ask(Qt::ImEnabled).toBool(); }));
  method.composeWithClause("WWWWWWWWWW", 5);
  // The start of the underline.
  const auto clause = [&] {
    const QImage line = shown.view().grab({20, 49, 200, 1}).toImage();
    int first = line.width();
    for (int x = line.width() - 1; x >= 0; --x) {
      first = line.pixelColor(x, 0).lightness() < 50 ? x : first;
    }
    return first;
  };
  EXPECT_TRUE(runUntil([&] { return clause() < 200; }));
  EXPECT_GT(clause(), 30);  // the other clause comes first
}

TEST(ClientOpenGLViewLinux, ComposesTextWhereTheCaretIs) {
  ShownPage shown(kFields);
  TestBrowser& page = shown.page();
  InputMethod method(shown.view());
  EXPECT_FALSE(method.ask(Qt::ImEnabled).toBool());
  shown.click({100, 40});
  ASSERT_TRUE(runUntil([&] { return method.ask(Qt::ImEnabled).toBool(); }));
  const auto caret = [&] { return method.ask(Qt::ImCursorRectangle).toRect(); };
  EXPECT_TRUE(runUntil([&] { return QRect(20, 30, 2, 24).contains(caret()); }));

  method.compose("ni", 2);
  EXPECT_TRUE(page.becomes("field.value", "ni"));
  EXPECT_TRUE(runUntil([&] { return caret().left() > 25; }));
  method.compose("nih", 1);
  EXPECT_TRUE(page.becomes("field.value + field.selectionStart", "nih1"));
  method.commit("\u4f60");
  EXPECT_TRUE(page.becomes("field.value", "\u4f60"));
  method.compose("x", 1);
  EXPECT_TRUE(page.becomes("field.value", "\u4f60x"));
  method.compose("", 0);
  EXPECT_TRUE(page.becomes("field.value", "\u4f60"));
  EXPECT_EQ(page.evaluate("seen.join()"),
            "start ,update ni,update nih,update \u4f60,end \u4f60,start ,update x,update ,end ");

  // Replaces text before the caret, as autocorrection does.
  method.commit("abc");
  EXPECT_TRUE(page.becomes("field.value", "\u4f60abc"));
  ASSERT_TRUE(runUntil([&] { return shown.view().textInput().selectedRange().from == 4; }));
  method.commit("BC", -2, 2);
  EXPECT_TRUE(page.becomes("field.value", "\u4f60aBC"));

  shown.click({100, 70});
  EXPECT_TRUE(runUntil([&] {
    return Qt::InputMethodHints(method.ask(Qt::ImHints).toInt())
        .testFlag(Qt::ImhEmailCharactersOnly);
  }));
  page.run("document.activeElement.blur()");
  EXPECT_TRUE(runUntil([&] { return !method.ask(Qt::ImEnabled).toBool(); }));
}

TEST(ClientOpenGLViewLinux, LeavesWhatIsComposedInItsField) {
  ShownPage shown(kFields);
  TestBrowser& page = shown.page();
  InputMethod method(shown.view());
  shown.click({100, 40});
  ASSERT_TRUE(runUntil([&] { return method.ask(Qt::ImEnabled).toBool(); }));
  method.compose("ni", 2);
  ASSERT_TRUE(page.becomes("field.value", "ni"));
  shown.click({100, 70});
  EXPECT_TRUE(page.becomes("document.activeElement.id", "mail"));
  EXPECT_FALSE(shown.view().textInput().isComposing());
  EXPECT_EQ(page.evaluate("field.value + ',' + mail.value + ',' + seen.at(-1)"), "ni,,end ni");

  method.compose("a", 1);
  ASSERT_TRUE(page.becomes("mail.value", "a"));
  QFocusEvent out(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
  QApplication::sendEvent(&shown.view(), &out);
  EXPECT_FALSE(shown.view().textInput().isComposing());
  EXPECT_TRUE(page.becomes("mail.value + seen.at(-1)", "aend a"));
}

TEST(ClientOpenGLViewLinux, TypesTheKeysThatItsKeyboardHas) {
  ShownPage shown(std::string(kFields) +
                  "<script>addEventListener('keydown', "
                  "event => seen.push(event.key))</script>");
  TestBrowser& page = shown.page();
  shown.click({100, 40});
  ASSERT_TRUE(page.becomes("document.activeElement.id", "field"));
  const auto type = [&](int key, const QString& text) {
    for (const QEvent::Type kind : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(kind, key, Qt::NoModifier, text);
      QApplication::sendEvent(&shown.view(), &event);
    }
  };
  type(Qt::Key_X, "x");
  type(Qt::Key_Back, "");
  type(Qt::Key_VolumeUp, "");
  type(Qt::Key_Launch9, "");
  EXPECT_TRUE(page.becomes("seen.join()", "x,BrowserBack,AudioVolumeUp,Unidentified"))
      << page.evaluate("JSON.stringify(seen)");
  type(Qt::Key_unknown, "\U0001F600");
  EXPECT_TRUE(page.becomes("field.value", "x\U0001F600")) << page.evaluate("field.value");
}

TEST(ClientOpenGLViewLinux, ScrollsByFineStepsAndRepeatsHeldKeys) {
  ShownPage shown(
      "<body style='height: 3000px'><script>repeats = [];"
      "addEventListener('keydown', event => repeats.push(event.repeat))</script>");
  const QPointF point(20, 30);
  for (int step = 0; step < 120; ++step) {
    QWheelEvent event(point, shown.view().mapToGlobal(point), {}, {0, -1}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&shown.view(), &event);
  }
  const int distance = 20 * QApplication::wheelScrollLines();
  EXPECT_TRUE(shown.page().becomes("Math.round(scrollY)", std::to_string(distance)));
  for (const bool repeat : {false, true, true}) {
    QKeyEvent event(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, "x", repeat);
    QApplication::sendEvent(&shown.view(), &event);
  }
  EXPECT_TRUE(shown.page().becomes("repeats.join()", "false,true,true"));
}

TEST(ClientOpenGLViewLinux, ShowsTheCursorsOfThePage) {
  ShownPage shown(R"(<style>html { height: 100% }</style><script>
    const picture = Object.assign(document.createElement('canvas'), { width: 24, height: 12 });
    picture.getContext('2d').fillRect(0, 0, 24, 12);
    document.documentElement.style.cursor = `url(${picture.toDataURL()}) 3 5, pointer`;
    </script>)");
  const auto becomes = [&](const auto& condition) {
    return runUntil([&] {
      const QPointF point(20, 30);
      QMouseEvent move(QEvent::MouseMove, point, shown.view().mapToGlobal(point), Qt::NoButton, {},
                       {});
      QApplication::sendEvent(&shown.view(), &move);
      return condition(shown.view().cursor());
    });
  };
  EXPECT_TRUE(becomes([](const QCursor& cursor) {
    return cursor.pixmap().size() == QSize(24, 12) && cursor.hotSpot() == QPoint(3, 5);
  }));
  shown.page().run("document.documentElement.style.cursor = 'grabbing'");
  EXPECT_TRUE(
      becomes([](const QCursor& cursor) { return cursor.shape() == Qt::ClosedHandCursor; }));
}

TEST(ClientOpenGLViewLinux, GoesBackAndForwardByTheButtonsOfTheMouse) {
  ShownPage shown(R"(<script>seen = [];
    for (const name of ['mousedown', 'mouseup', 'click', 'auxclick'])
      addEventListener(name, event => seen.push(name + event.button));
    addEventListener('mousedown', () => { if (!location.hash) location.hash = 'next'; });
    </script>)");
  TestBrowser& page = shown.page();
  shown.click({20, 30});
  ASSERT_TRUE(page.becomes("location.hash + ' ' + seen", "#next mousedown0,mouseup0,click0"));
  const auto press = [&](Qt::MouseButton button) {
    QTest::mouseClick(&shown.view(), button, {}, {20, 30});
  };
  press(Qt::BackButton);
  EXPECT_TRUE(page.becomes("location.hash", ""));
  press(Qt::ForwardButton);
  EXPECT_TRUE(page.becomes("location.hash", "#next"));
  EXPECT_EQ(page.evaluate("seen.join()"), "mousedown0,mouseup0,click0");
}

TEST(ClientOpenGLViewLinux, ScrollsOnceForEachPartOfAGesture) {
  ShownPage shown("<body style='height: 3000px'>");
  QWidget other;
  other.show();
  const auto scroll = [&](QWidget& target, Qt::ScrollPhase phase) {
    const QPointF point(20, 30);
    QWheelEvent event(point, target.mapToGlobal(point), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      phase, false);
    QApplication::sendEvent(&target, &event);
  };
  const int step = 20 * QApplication::wheelScrollLines();
  const auto scrolledTo = [&](int steps) {
    return shown.page().becomes("Math.round(scrollY)", std::to_string(steps * step))
               ? testing::AssertionSuccess()
               : testing::AssertionFailure() << shown.page().evaluate("scrollY");
  };
  scroll(shown.view(), Qt::ScrollBegin);
  scroll(shown.view(), Qt::ScrollUpdate);
  scroll(shown.view(), Qt::ScrollEnd);
  EXPECT_TRUE(scrolledTo(3));
  // A gesture that ends over another window.
  scroll(shown.view(), Qt::ScrollBegin);
  scroll(other, Qt::ScrollUpdate);
  scroll(other, Qt::ScrollEnd);
  scroll(other, Qt::ScrollEnd);
  EXPECT_TRUE(scrolledTo(5));
}

}  // namespace
}  // namespace client::test
