#include "engine/packed_resume.h"

#include <cstdint>

#include "engine/packing.h"

namespace zt_transfers {

std::string packed(const DownloadResume& resume) {
  CPacker packer;
  packer.text(resume.partialPath);
  packer.number(resume.inode);
  packer.text(resume.validator);
  packer.number(resume.size);
  packer.number(resume.durable.size());
  for (const ByteSpan& span : resume.durable) {
    packer.number(span.begin);
    packer.number(span.end);
  }
  return packer.bytes();
}

std::optional<DownloadResume> unpackedResume(std::string_view bytes) {
  CUnpacker unpacker(bytes);
  DownloadResume resume;
  resume.partialPath = unpacker.text();
  resume.inode = unpacker.number();
  resume.validator = unpacker.text();
  resume.size = unpacker.number();
  const std::uint64_t spans = unpacker.number();
  std::uint64_t last = 0;
  for (std::uint64_t count = 0; count < spans && unpacker.ok(); ++count) {
    const std::uint64_t begin = unpacker.number();
    const std::uint64_t end = unpacker.number();
    if (begin < last || end <= begin || end > resume.size) {
      return std::nullopt;
    }
    resume.durable.push_back({begin, end});
    last = end;
  }
  if (!unpacker.ok() || !resume.begun()) {
    return std::nullopt;
  }
  resume.written = resume.durable;
  return resume;
}

}  // namespace zt_transfers
