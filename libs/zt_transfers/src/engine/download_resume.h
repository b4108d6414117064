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

using ByteSpans = std::vector<ByteSpan>;  // ascending, with gaps between them

std::uint64_t lengthOf(const ByteSpans& spans);

// Merges a span into `spans`.
void addSpan(ByteSpans& spans, ByteSpan span);

// The partial file of a download, and which of its bytes can be trusted. The store keeps `durable`
// and returns it as `written`, too.
//
// The partial file is known by its name, which no other queue uses: inode numbers change where file
// systems make them up at each mount, and in a restored backup.
struct DownloadResume {
  static constexpr std::uint64_t kUnknown = ~std::uint64_t{0};
  static constexpr std::uint32_t kNobody = ~std::uint32_t{0};

  std::string partialPath;  // below the group's folder; empty: not begun
  // The user id that the file system gave the partial file. Some give all files the same one.
  std::uint32_t owner = kNobody;
  std::string validator;   // the version's strong ETag, else its Last-Modified; empty: none
  std::uint64_t size = 0;  // bytes of the complete version
  ByteSpans written;       // by this process: survives its end
  ByteSpans durable;       // synced: survives a power cut
  // Beside the partial file. Set before the complete file gets this name; empty: not so far yet.
  std::string finalName;

  bool begun() const { return !partialPath.empty(); }
  bool operator==(const DownloadResume&) const = default;
};

}  // namespace zt_transfers
