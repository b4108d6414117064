#include "live_page.h"

#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "include/base/cef_bind.h"
#include "include/base/cef_callback.h"
#include "include/cef_app.h"
#include "include/cef_client.h"
#include "include/wrapper/cef_closure_task.h"
#include "osr/client_osr_handler.h"
#include "osr/view/osr_view.h"
#include "timing.h"

namespace bench {
namespace {

constexpr int kWidth = 1400;
constexpr int kHeight = 900;
constexpr int kFramesPerSecond = 60;
constexpr int kSettleMs = 1000;
constexpr int kMeasureMs = 5000;
constexpr int kClicks = 60;

// Ten growing bars, as in the list of transfers.
constexpr const char* kBars =
    "data:text/html,<style>div{width:900px;height:6px;margin:50px 200px;background:gray}"
    "i{display:block;height:6px;background:teal}</style><script>"
    "for(let n=0;n<10;++n)document.write('<div><i></i></div>');"
    "const bars=[...document.querySelectorAll('i')];let frame=0;(function step(){"
    "frame++;bars.forEach((bar,n)=>bar.style.width=(frame*3+n*90)%25900+'px');"
    "requestAnimationFrame(step)})()</script>";

// Every pixel changes in every frame.
constexpr const char* kWhole =
    "data:text/html,<script>let frame=0;(function step(){"
    "document.documentElement.style.background=`rgb(${++frame%25256},80,120)`;"
    "requestAnimationFrame(step)})()</script>";

constexpr const char* kClicked =
    "data:text/html,<style>div{position:absolute;left:100px;top:100px;width:200px;height:100px;"
    "background:teal}</style><div></div><script>let on=false;onmousedown=()=>"
    "document.querySelector('div').style.background=(on=!on)?'orange':'teal'</script>";

class TimedHandler final : public client::ClientOSRHandler {
 public:
  explicit TimedHandler(const std::shared_ptr<client::OsrView>& view)
      : ClientOSRHandler(view), window_(dynamic_cast<QWidget*>(view.get())) {}

  void OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects,
               const void* buffer, int width, int height) override {
    const Stopwatch watch;
    ClientOSRHandler::OnPaint(browser, type, dirtyRects, buffer, width, height);
    times.push_back(watch.passed());
    for (const CefRect& rect : dirtyRects) {
      pixels += static_cast<double>(rect.width) * rect.height;
    }
    if (onPainted) {
      window_->repaint();
      onPainted();
    }
  }

  std::vector<double> times;
  double pixels = 0;
  std::function<void()> onPainted;  // if set, the window is painted at once, and this is called

 private:
  QWidget* const window_;
};

class Client final : public CefClient, public CefLifeSpanHandler {
 public:
  CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() override { return this; }
  CefRefPtr<CefRenderHandler> GetRenderHandler() override { return handler; }
  CefRefPtr<CefDisplayHandler> GetDisplayHandler() override { return handler; }
  void OnAfterCreated(CefRefPtr<CefBrowser> created) override { browser = created; }
  void OnBeforeClose(CefRefPtr<CefBrowser> closed) override {
    handler->OnBeforeClose(closed);
    handler = nullptr;
    browser = nullptr;
    CefQuitMessageLoop();
  }

  CefRefPtr<TimedHandler> handler;
  CefRefPtr<CefBrowser> browser;

 private:
  IMPLEMENT_REFCOUNTING(Client);
};

void runFor(int ms) {
  CefPostDelayedTask(TID_UI, base::BindOnce(&CefQuitMessageLoop), ms);
  CefRunMessageLoop();
}

// A page in the client's view, until its end.
class LivePage {
 public:
  explicit LivePage(const char* url) {
    client::OffScreenViewOptions options;
    options.bounds = CefRect(0, 0, kWidth, kHeight);
    options.browserProvider = [this] { return client_->browser; };
    std::string error;
    const auto view = client::createOffScreenView(options, error);
    if (!view) {
      std::fprintf(stderr, "paint: no view: %s\n", error.c_str());
      std::exit(1);
    }
    client_->handler = new TimedHandler(view);
    CefWindowInfo window;
    window.SetAsWindowless(client::windowOf(*view));
    CefBrowserSettings settings;
    settings.windowless_frame_rate = kFramesPerSecond;
    CefBrowserHost::CreateBrowser(window, client_, url, settings, nullptr, nullptr);
    runFor(kSettleMs);
  }
  ~LivePage() {
    client_->browser->GetHost()->CloseBrowser(true);
    CefRunMessageLoop();
  }

  TimedHandler& handler() { return *client_->handler; }
  CefRefPtr<CefBrowserHost> host() { return client_->browser->GetHost(); }

 private:
  const CefRefPtr<Client> client_ = new Client;
};

void animate(const char* name, const char* url) {
  LivePage page(url);
  page.handler().times.clear();
  page.handler().pixels = 0;
  const double before = processorTime();
  const Stopwatch watch;
  runFor(kMeasureMs);
  const double seconds = watch.passed() / 1e6;
  auto& times = page.handler().times;
  const auto frames = static_cast<double>(times.size());
  std::printf(
      "%-22s %5.1f frames/s, %6.1f %% of the pixels new, OnPaint %6.0f µs (p95 %6.0f), "
      "processor of the client %3.0f %%\n",
      name, frames / seconds, 100 * page.handler().pixels / (frames * kWidth * kHeight),
      median(times), percentile(times, 0.95), (processorTime() - before) / seconds / 1e4);
}

void click() {
  LivePage page(kClicked);
  std::vector<double> times;
  CefMouseEvent event;
  event.x = 150;
  event.y = 150;
  page.host()->SendMouseMoveEvent(event, false);
  runFor(kSettleMs / 4);
  for (int turn = 0; turn < kClicks; ++turn) {
    const Stopwatch watch;
    page.handler().onPainted = [&] {
      times.push_back(watch.passed());
      page.handler().onPainted = nullptr;
      CefQuitMessageLoop();
    };
    page.host()->SendMouseClickEvent(event, MBT_LEFT, false, 1);
    page.host()->SendMouseClickEvent(event, MBT_LEFT, true, 1);
    CefRunMessageLoop();
    runFor(37 + turn % 17);  // at a different moment of a frame
  }
  std::printf("%-22s median %.1f ms, p95 %.1f ms\n", "from click to window", median(times) / 1000,
              percentile(times, 0.95) / 1000);
}

}  // namespace

void measureLivePages() {
  animate("ten bars grow", kBars);
  animate("the whole page changes", kWhole);
  click();
}

}  // namespace bench
