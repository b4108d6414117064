#include "src/osr/renderer/pixels.h"

#include <sstream>

namespace client::test {
namespace {

std::ostream& operator<<(std::ostream& out, Color color) {
  return out << "red " << int{color.red} << " green " << int{color.green} << " blue "
             << int{color.blue} << " alpha " << int{color.alpha};
}

}  // namespace

Pixels::Pixels(int width, int height, const Paint& paint)
    : width_(width), height_(height), colors_(static_cast<std::size_t>(width * height)) {
  fill(rect(), paint);
}

void Pixels::fill(const CefRect& rect, const Paint& paint) {
  for (int y = rect.y; y < rect.y + rect.height; ++y) {
    for (int x = rect.x; x < rect.x + rect.width; ++x) {
      colors_[static_cast<std::size_t>(y * width_ + x)] = paint(x, y);
    }
  }
}

std::string difference(const Pixels& actual, const Pixels& expected) {
  if (actual.width() != expected.width() || actual.height() != expected.height()) {
    return "the sizes";
  }
  std::ostringstream out;
  for (int y = 0; y < actual.height(); ++y) {
    for (int x = 0; x < actual.width(); ++x) {
      if (actual.at(x, y) != expected.at(x, y)) {
        out << x << ',' << y << ": " << actual.at(x, y) << ", not " << expected.at(x, y) << '\n';
      }
    }
  }
  return out.str();
}

Color distinct(int x, int y) {
  return {static_cast<uint8_t>(x), static_cast<uint8_t>(y), 40, 255};
}

Color changed(int x, int y) {
  return {static_cast<uint8_t>(y), static_cast<uint8_t>(x), 200, 255};
}

}  // namespace client::test
