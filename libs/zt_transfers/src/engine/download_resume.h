#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zt_transfers {

// Bytes of a file from `begin` up to, not including, `end`.
struct ByteSpan {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;

  std::uint64_t length() const { return end - begin; }
  bool operator==(const ByteSpan&) const = default;
};

using ByteSpans = std::vector<ByteSpan>;  // ascending, none touches another

std::uint64_t lengthOf(const ByteSpans& spans);

// Adds a span to those that are there.
void addSpan(ByteSpans& spans, ByteSpan span);

// What an attempt to download a file left behind for the next one: its partial file, and how far
// that can be trusted. Whoever keeps it beyond the process keeps `durable` and gives it back as
// `written`, too.
struct DownloadResume {
  static constexpr std::uint64_t kUnknown = ~std::uint64_t{0};

  std::string partialPath;  // below the group's folder; empty: nothing was begun
  std::uint64_t inode = 0;  // of the partial file, which keeps it under its final name
  std::string validator;    // the version's strong ETag, else its Last-Modified; empty: none
  std::uint64_t size = 0;   // bytes of the whole version
  ByteSpans written;        // what this process has written: it survives the process, at most
  ByteSpans durable;        // the part of it that was synced: it survives a power cut

  bool begun() const { return !partialPath.empty(); }
  bool operator==(const DownloadResume&) const = default;
};

}  // namespace zt_transfers
