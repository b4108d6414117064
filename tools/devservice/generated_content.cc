#include "devservice/generated_content.h"

#include <Poco/Checksum.h>
#include <Poco/DeflatingStream.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <sstream>

namespace zantrio::devservice {

namespace {

using Colour = std::array<double, 3>;

std::string bigEndian(std::uint32_t value) {
  return {static_cast<char>(value >> 24), static_cast<char>(value >> 16),
          static_cast<char>(value >> 8), static_cast<char>(value)};
}

std::string pngChunk(const std::string& type, const std::string& data) {
  Poco::Checksum crc(Poco::Checksum::TYPE_CRC32);
  crc.update(type + data);
  return bigEndian(static_cast<std::uint32_t>(data.size())) + type + data +
         bigEndian(crc.checksum());
}

std::string compressed(const std::string& data) {
  std::ostringstream out;
  Poco::DeflatingOutputStream deflate(out, Poco::DeflatingStreamBuf::STREAM_ZLIB);
  deflate << data;
  deflate.close();
  return out.str();
}

Colour mix(const Colour& a, const Colour& b, double share) {
  share = std::clamp(share, 0.0, 1.0);
  return {a[0] + (b[0] - a[0]) * share, a[1] + (b[1] - a[1]) * share, a[2] + (b[2] - a[2]) * share};
}

// The colour at a point of the picture; both coordinates are from 0 to 1.
Colour seascape(double x, double y, double timeOfDay) {
  const Colour zenith = mix({34, 40, 92}, {52, 128, 205}, timeOfDay);
  const Colour horizon = mix({250, 150, 96}, {196, 226, 244}, timeOfDay);
  const Colour sun = {255, 244, 214};
  constexpr double kHorizon = 0.62;
  const double sunY = kHorizon - 0.05 - 0.4 * timeOfDay;
  if (y > kHorizon) {
    const double depth = (y - kHorizon) / (1 - kHorizon);
    const double ripple = 0.5 + 0.5 * std::sin(900 * depth / (0.4 + depth) + 9 * std::sin(40 * x));
    const double glitter = std::exp(-std::pow((x - 0.5) / (0.05 + 0.12 * depth), 2)) * ripple;
    return mix(mix(horizon, {16, 52, 84}, 0.45 + 0.55 * depth), sun, 0.75 * glitter);
  }
  const double distance = std::hypot((x - 0.5) * 1.6, y - sunY);
  const Colour sky = mix(zenith, horizon, y / kHorizon);
  return distance < 0.055 ? sun : mix(sun, sky, 0.35 + 2.2 * distance);
}

// A pseudo-random number for every index (the finaliser of SplitMix64).
std::uint64_t noise(std::uint64_t index) {
  std::uint64_t value = (index + 1) * 0x9E3779B97F4A7C15ULL;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9ULL;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBULL;
  return value ^ (value >> 31);
}

}  // namespace

std::size_t CTextContent::readAt(std::span<char> buffer, std::uint64_t offset) const {
  if (offset >= text_.size()) {
    return 0;
  }
  return text_.copy(buffer.data(), buffer.size(), offset);
}

std::size_t CNoiseContent::readAt(std::span<char> buffer, std::uint64_t offset) const {
  if (offset >= size_) {
    return 0;
  }
  const std::size_t count = std::min<std::uint64_t>(buffer.size(), size_ - offset);
  for (std::size_t at = 0; at < count;) {
    const std::uint64_t word = noise((offset + at) / sizeof(std::uint64_t));
    const std::size_t skip = (offset + at) % sizeof word;
    const std::size_t length = std::min(sizeof word - skip, count - at);
    std::memcpy(buffer.data() + at, reinterpret_cast<const char*>(&word) + skip, length);
    at += length;
  }
  return count;
}

std::string drawSeascape(unsigned width, unsigned height, double timeOfDay) {
  std::string pixels;
  pixels.reserve((3UL * width + 1) * height);
  for (unsigned row = 0; row < height; ++row) {
    pixels += '\0';  // no filter
    for (unsigned column = 0; column < width; ++column) {
      for (const double part : seascape((column + 0.5) / width, (row + 0.5) / height, timeOfDay)) {
        pixels += static_cast<char>(static_cast<unsigned char>(std::clamp(part, 0.0, 255.0)));
      }
    }
  }
  const std::string header =
      bigEndian(width) + bigEndian(height) + std::string("\x08\x02\0\0\0", 5);
  return "\x89PNG\r\n\x1a\n" + pngChunk("IHDR", header) + pngChunk("IDAT", compressed(pixels)) +
         pngChunk("IEND", "");
}

}  // namespace zantrio::devservice
