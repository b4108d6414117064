// Pictures in tests.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "include/cef_base.h"

namespace client::test {

struct Color {
  uint8_t blue, green, red, alpha;
  bool operator==(const Color&) const = default;
};

// Pixels as the engine hands them over: BGRA, top row first.
class Pixels {
 public:
  using Paint = std::function<Color(int x, int y)>;

  Pixels(int width, int height, const Paint& paint);

  int width() const { return width_; }
  int height() const { return height_; }
  const void* data() const { return colors_.data(); }
  Color* data() { return colors_.data(); }
  Color at(int x, int y) const { return colors_[static_cast<std::size_t>(y * width_ + x)]; }
  CefRect rect() const { return {0, 0, width_, height_}; }
  void fill(const CefRect& rect, const Paint& paint);

 private:
  int width_;
  int height_;
  std::vector<Color> colors_;
};

// Describes the differing pixels, one per line; empty if equal.
std::string difference(const Pixels& actual, const Pixels& expected);

// A different colour for every pixel up to 200 × 200.
Color distinct(int x, int y);
// The same with other colours.
Color changed(int x, int y);

}  // namespace client::test
