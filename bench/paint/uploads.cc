#include "uploads.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "osr/renderer/osr_renderer.h"
#include "platform/linux/view/egl_canvas.h"
#include "timing.h"

namespace bench {
namespace {

constexpr int kWidth = 1400;
constexpr int kHeight = 900;
constexpr int kTurns = 101;

struct Frame {
  const char* name;
  CefRenderHandler::RectList dirty;
};

const Frame kFrames[] = {
    {"caret", {{300, 400, 2, 18}}},
    {"progress of ten rows",
     {{200, 100, 900, 6},
      {200, 160, 900, 6},
      {200, 220, 900, 6},
      {200, 280, 900, 6},
      {200, 340, 900, 6},
      {200, 400, 900, 6},
      {200, 460, 900, 6},
      {200, 520, 900, 6},
      {200, 580, 900, 6},
      {200, 640, 900, 6}}},
    {"a scrolled list", {{100, 150, 1200, 600}}},
    {"all of the page", {{0, 0, kWidth, kHeight}}},
};

double bytesOf(const CefRenderHandler::RectList& rects) {
  double bytes = 0;
  for (const CefRect& rect : rects) {
    bytes += 4.0 * rect.width * rect.height;
  }
  return bytes;
}

void copy(const CefRenderHandler::RectList& rects, const uint32_t* from, uint32_t* to) {
  for (const CefRect& rect : rects) {
    for (int y = rect.y; y < rect.y + rect.height; ++y) {
      const auto start = static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(rect.x);
      std::memcpy(to + start, from + start,
                  sizeof(uint32_t) * static_cast<std::size_t>(rect.width));
    }
  }
}

class Measurement {
 public:
  explicit Measurement(client::EglCanvas& canvas) : canvas_(canvas), renderer_(false, false) {
    canvas_.makeCurrent({kWidth, kHeight});
    paint(kFrames[3].dirty);
  }
  ~Measurement() { canvas_.makeCurrent({kWidth, kHeight}); }

  void run(const Frame& frame) {
    std::vector<double> copies;
    std::vector<double> parts;
    std::vector<double> wholes;
    for (int turn = 0; turn < kTurns; ++turn) {
      copies.push_back(timed([&] { copy(frame.dirty, page_.data(), copy_.data()); }));
      parts.push_back(timed([&] { paint(frame.dirty); }));
      wholes.push_back(timed([&] { paint(kFrames[3].dirty); }));
    }
    const double part = median(parts);
    std::printf(
        "%-22s %9.0f B %8.1f µs  memcpy %8.1f µs  ratio %5.2f  whole upload %8.1f µs  %5.2f\n",
        frame.name, bytesOf(frame.dirty), part, median(copies), part / median(copies),
        median(wholes), part / median(wholes));
  }

  void runSteps() {
    std::vector<double> draws;
    std::vector<double> pictures;
    for (int turn = 0; turn < kTurns; ++turn) {
      draws.push_back(timed([&] {
        renderer_.Render();
        glFinish();
      }));
      pictures.push_back(timed([&] {
        canvas_.takePicture({kWidth, kHeight}, {0, 0, kWidth, kHeight});
      }));
    }
    std::printf("%-22s draw %.1f µs, take the picture %.1f µs\n", "whole frame", median(draws),
                median(pictures));
  }

 private:
  template <class Work>
  double timed(const Work& work) {
    for (uint32_t& pixel : page_) {
      pixel += 0x010203U;  // frames differ, and all are equally cached
    }
    const Stopwatch watch;
    work();
    return watch.passed();
  }

  void paint(const CefRenderHandler::RectList& dirty) {
    renderer_.OnPaint(nullptr, PET_VIEW, dirty, page_.data(), kWidth, kHeight);
    glFinish();
  }

  client::EglCanvas& canvas_;
  client::OsrRenderer renderer_;
  std::vector<uint32_t> page_ = std::vector<uint32_t>(kWidth * kHeight, 0xFF204060U);
  std::vector<uint32_t> copy_ = page_;
};

}  // namespace

void measureUploads() {
  std::string error;
  const auto canvas = client::EglCanvas::create(error);
  if (!canvas) {
    std::printf("nothing draws: %s\n", error.c_str());
    return;
  }
  Measurement measurement(*canvas);
  for (const Frame& frame : kFrames) {
    measurement.run(frame);
  }
  measurement.runSteps();
}

}  // namespace bench
