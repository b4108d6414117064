// Off-screen browsers: frames, input and drags of real pages.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <utility>

#include "support/framework.h"
#include "support/screen.h"

namespace cef_test {
namespace {

constexpr char kBox[] = R"(<style>body { margin: 0; background: #ffffff }
  #box { position: absolute; left: 40px; top: 60px; width: 30px; height: 20px; background: #ff0000 }
  </style><div id=box></div>)";

TEST(OffScreen, PaintsWhatChangedOrAllWhenAskedInTheViewsSizeAndScale) {
  OffScreenPage shown(kBox);
  Screen& screen = shown.screen();
  TestBrowser& page = shown.page();
  ASSERT_TRUE(screen.becomes(45, 65, "ff0000"));
  EXPECT_TRUE(screen.becomes(200, 150, "ffffff"));
  EXPECT_EQ(screen.pictureSize, CefSize(300, 200));
  EXPECT_EQ(CefRect(screen.paints.front().dirty.front()), CefRect(0, 0, 300, 200));

  screen.paints.clear();
  page.run("box.style.background = '#00ff00'");
  ASSERT_TRUE(screen.becomes(45, 65, "00ff00"));
  ASSERT_EQ(screen.paints.size(), 1u);
  EXPECT_EQ(screen.paints[0].dirty, std::vector<CefRect>{CefRect(40, 60, 30, 20)});
  // Two places far apart are two rectangles.
  page.run("box.style.top = '160px'");
  ASSERT_TRUE(screen.becomes(45, 165, "00ff00"));
  EXPECT_EQ(screen.paints.back().dirty,
            (std::vector<CefRect>{CefRect(40, 60, 30, 20), CefRect(40, 160, 30, 20)}));

  page.evaluate("new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)))");
  screen.paints.clear();
  shown.host()->Invalidate(PET_POPUP);  // there is none
  EXPECT_TRUE(screen.paints.empty());
  shown.host()->Invalidate(PET_VIEW);  // paints inside the call
  ASSERT_EQ(screen.paints.size(), 1u);
  EXPECT_EQ(screen.paints[0].dirty, std::vector<CefRect>{CefRect(0, 0, 300, 200)});

  screen.size = {400, 250};
  shown.host()->WasResized();
  EXPECT_TRUE(runUntil([&] { return screen.pictureSize == CefSize(400, 250); }));
  EXPECT_TRUE(
      page.becomes("[innerWidth, innerHeight, outerWidth, outerHeight].join()", "400,250,400,250"))
      << page.evaluate("[innerWidth, innerHeight, outerWidth, outerHeight].join()");
  screen.scale = 2;
  shown.host()->NotifyScreenInfoChanged();
  EXPECT_TRUE(runUntil([&] { return screen.pictureSize == CefSize(800, 500); }));
  EXPECT_TRUE(screen.becomes(90, 330, "00ff00"));
  EXPECT_TRUE(page.becomes("innerWidth + ' ' + devicePixelRatio", "400 2"));
  // Input stays in view points.
  page.evaluate("box.onclick = () => box.style.background = '#0000ff'");
  shown.click(50, 170);
  EXPECT_TRUE(screen.becomes(90, 330, "0000ff"));
}

TEST(OffScreen, TakesMovesWheelsAndClicksWithTheClientsCount) {
  OffScreenPage shown(R"(<style>body { margin: 0; height: 3000px }
    #box { width: 100px; height: 50px; cursor: pointer }</style><div id=box></div><script>
    seen = [];
    for (const name of ['mousedown', 'mouseup', 'click', 'dblclick', 'contextmenu'])
      addEventListener(name, event => { event.preventDefault();
        seen.push(name + event.button + '@' + event.clientX + ',' + event.clientY); });
    addEventListener('mousemove', event => moved = event.clientX + ',' + event.clientY);
    box.onmouseleave = () => seen.push('left');
    counts = [];
    addEventListener('click', event => counts.push(event.detail));
    </script>)");
  TestBrowser& page = shown.page();
  ASSERT_TRUE(page.becomes("document.readyState", "complete"));
  ASSERT_TRUE(runUntil([&] { return !shown.screen().paints.empty(); }));
  shown.click(20, 30);
  EXPECT_TRUE(page.becomes("seen.join(' ')", "mousedown0@20,30 mouseup0@20,30 click0@20,30"));
  EXPECT_EQ(page.evaluate("moved"), "20,30");
  EXPECT_TRUE(runUntil([&] { return shown.screen().cursor == CT_HAND; }));
  for (const int count : {1, 2, 3, 1, 2}) {
    shown.click(20, 30, count);
  }
  EXPECT_TRUE(page.becomes("counts.join()", "1,1,2,3,1,2")) << page.evaluate("counts.join()");

  shown.host()->SendMouseMoveEvent({}, true);
  EXPECT_TRUE(page.becomes("seen.at(-1)", "left"));
  shown.host()->SendMouseWheelEvent({}, 0, -100);
  EXPECT_TRUE(page.becomes("Math.round(scrollY)", "100"));
}

TEST(OffScreen, TakesTextKeysAndEditCommands) {
  OffScreenPage shown(
      "<input id=field autofocus><script>keys = []; addEventListener('keydown', "
      "event => keys.push(event.key)); field.focus()</script>");
  TestBrowser& page = shown.page();
  ASSERT_TRUE(page.becomes("document.activeElement.id", "field"));
  ASSERT_TRUE(runUntil([&] { return !shown.screen().paints.empty(); }));
  shown.type(u'a', 'A');
  shown.type(u'\u00e4', 0);
  shown.type(u'7', '7');
  shown.type(u'!', 0);
  EXPECT_TRUE(page.becomes("field.value", "a\u00e47!"));
  shown.type(0, 0x25);  // left
  shown.type(u'\b', 0x08);
  EXPECT_TRUE(page.becomes("field.value", "a\u00e4!"));
  EXPECT_EQ(page.evaluate("keys.join()"), "a,\u00e4,7,!,ArrowLeft,Backspace");
  page.frame()->SelectAll();
  EXPECT_TRUE(page.becomes("field.selectionEnd - field.selectionStart", "3"));
  page.frame()->Delete();
  EXPECT_TRUE(page.becomes("field.value", ""));
  page.frame()->Undo();
  EXPECT_TRUE(page.becomes("field.value", "a\u00e4!"));
  page.frame()->Redo();
  EXPECT_TRUE(page.becomes("field.value", ""));
  page.frame()->Undo();
  EXPECT_TRUE(page.becomes("field.value", "a\u00e4!"));
  // The system's clipboard gets the text some time after the page has cut or copied it.
  const auto clipboardBecomes = [](const QString& text) {
    return runUntil([&] { return QGuiApplication::clipboard()->text() == text; });
  };
  page.frame()->SelectAll();
  page.frame()->Cut();
  EXPECT_TRUE(page.becomes("field.value", ""));
  ASSERT_TRUE(clipboardBecomes("a\u00e4!"));
  for (const char* text : {"a\u00e4!", "a\u00e4!a\u00e4!"}) {
    page.frame()->Paste();
    ASSERT_TRUE(page.becomes("field.value", text));
  }
  page.frame()->SelectAll();
  page.frame()->Copy();
  EXPECT_TRUE(clipboardBecomes("a\u00e4!a\u00e4!"));
}

constexpr char kDropPage[] = R"(<style>body { margin: 0; height: 200px }</style><script>
  seen = [];
  addEventListener('dragenter', event => event.preventDefault());
  addEventListener('dragover', event => { event.preventDefault();
    event.dataTransfer.dropEffect = event.clientX < 100 ? 'copy' : 'none'; });
  addEventListener('dragleave', () => seen.push('leave'));
  addEventListener('drop', event => { event.preventDefault();
    seen.push('drop ' + event.dataTransfer.getData('text') + ' ' +
      [...event.dataTransfer.files].map(file => file.name + file.size).join() +
      '@' + event.clientX + ',' + event.clientY); });
</script>)";

TEST(OffScreen, IsTheTargetOfTheClientsDrags) {
  OffScreenPage shown(kDropPage);
  ASSERT_TRUE(shown.page().becomes("document.readyState", "complete"));
  ASSERT_TRUE(runUntil([&] { return !shown.screen().paints.empty(); }));
  const std::string path = writePage("dropped.txt", "").substr(7);
  const CefRefPtr<CefDragData> files = CefDragData::Create();
  files->AddFile(path, "dropped.txt");
  const auto host = shown.host();
  host->DragTargetDragEnter(files, {50, 60, 0}, DRAG_OPERATION_COPY);
  EXPECT_TRUE(runUntil([&] {
    host->DragTargetDragOver({50, 60, 0}, DRAG_OPERATION_COPY);
    return shown.screen().dragOperation == DRAG_OPERATION_COPY;
  }));
  EXPECT_TRUE(runUntil([&] {
    host->DragTargetDragOver({150, 60, 0}, DRAG_OPERATION_COPY);
    return shown.screen().dragOperation == DRAG_OPERATION_NONE;
  }));
  host->DragTargetDragLeave();
  EXPECT_TRUE(shown.page().becomes("seen.join()", "leave"));
  host->DragTargetDragEnter(files, {50, 60, 0}, DRAG_OPERATION_COPY);
  host->DragTargetDragOver({51, 61, 0}, DRAG_OPERATION_COPY);
  host->DragTargetDrop({51, 61, 0});
  EXPECT_TRUE(shown.page().becomes("seen.at(-1)", "drop  dropped.txt35@51,61"));
}

// Presses the button at a place and moves the pointer away, which begins a drag.
void pull(OffScreenPage& shown, int y) {
  shown.move(20, y);
  shown.press(20, y);
  for (int step = 1; step < 10; ++step) {
    shown.move(20 + 3 * step, y, EVENTFLAG_LEFT_MOUSE_BUTTON);
  }
}

TEST(OffScreen, EndsADragThatTheClientRefuses) {
  OffScreenPage shown(R"(<style>body { margin: 0 }</style>
    <div id=from draggable=true style='width: 100px; height: 60px; background: #0a0'></div><script>
    seen = [];
    from.ondragstart = event => event.dataTransfer.setData('text', 'carried');
    from.ondragend = event => seen.push('end ' + event.dataTransfer.dropEffect);
    </script>)");
  ASSERT_TRUE(shown.screen().becomes(20, 20, "00aa00"));
  shown.screen().takesDrags = false;
  pull(shown, 10);
  // Asking the page ends all message loops, the drag's too, before the client is asked.
  ASSERT_TRUE(runUntil([&] { return shown.screen().dragged.get() != nullptr; }));
  EXPECT_TRUE(shown.page().becomes("seen.at(-1)", "end none"));
  EXPECT_EQ(shown.screen().dragged->GetFragmentText().ToString(), "carried");
}

TEST(OffScreen, HandsOverWhatIsDraggedOutOfThePage) {
  OffScreenPage shown(R"(<style>body { margin: 0 } a, img { position: absolute; left: 0;
    width: 100px; height: 50px; background: #0a0 } img { top: 60px }</style>
    <a href='http://127.0.0.1/linked'>words</a><img><script>
    const picture = Object.assign(document.createElement('canvas'), { width: 8, height: 8 });
    document.querySelector('img').src = picture.toDataURL();
    addEventListener('dragend', () => ended = 'yes');
    </script>)");
  shown.screen().takesDrags = false;
  ASSERT_TRUE(shown.screen().becomes(20, 100, "00aa00"));
  pull(shown, 10);
  ASSERT_TRUE(runUntil([&] { return shown.screen().dragged.get() != nullptr; }));
  const CefRefPtr<CefDragData> link = std::exchange(shown.screen().dragged, nullptr);
  EXPECT_EQ(link->GetLinkURL().ToString(), "http://127.0.0.1/linked");
  EXPECT_EQ(link->GetFragmentText().ToString(), "words");
  EXPECT_NE(link->GetFragmentHtml().ToString().find("words</a>"), std::string::npos);
  // The page begins no drag before it knows the end of the other one.
  ASSERT_TRUE(shown.page().becomes("window.ended", "yes"));
  pull(shown, 100);
  ASSERT_TRUE(runUntil([&] { return shown.screen().dragged.get() != nullptr; }));
  const CefRefPtr<CefDragData> image = shown.screen().dragged;
  EXPECT_FALSE(image->IsFile());
  EXPECT_GT(image->GetFileContents(nullptr), 50u);
  EXPECT_TRUE(image->GetFileName().ToString().ends_with(".png")) << image->GetFileName().ToString();
  EXPECT_NE(image->GetFragmentHtml().ToString().find("<img"), std::string::npos);
}

TEST(OffScreen, ClosesWhileADragOfItsPageRuns) {
  const CefRefPtr<Screen> screen(new Screen);
  {
    OffScreenPage shown(
        "<div draggable=true style='width: 300px; height: 200px; background: "
        "#0a0'></div>",
        screen);
    ASSERT_TRUE(screen->becomes(20, 20, "00aa00"));
    pull(shown, 20);
    EXPECT_TRUE(runUntil([&] { return screen->dragged.get() != nullptr; }));
  }
  EXPECT_TRUE(screen->HasOneRef());
}

}  // namespace
}  // namespace cef_test
