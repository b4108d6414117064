#include "store/packed_resume.h"

#include <cstdint>

#include "store/packing.h"

namespace zt_transfers {
namespace {

// The block of a download begins with its partial file's path, which is never empty. An empty text
// there marks an upload session.
constexpr std::string_view kSession;

// Also for times before 1970.
std::uint64_t unsignedTime(std::int64_t time) {
  return static_cast<std::uint64_t>(time);
}

void pack(CPacker& packer, const DownloadResume& resume) {
  packer.text(resume.partialPath);
  packer.number(resume.owner);
  packer.text(resume.validator);
  packer.number(resume.size);
  packer.number(resume.durable.size());
  for (const ByteSpan& span : resume.durable) {
    packer.number(span.begin);
    packer.number(span.end);
  }
  packer.text(resume.finalName);
}

// Before version 5 the owner's place held an inode number, and the block ended before the final
// name.
std::optional<TransferResume> unpackedDownload(std::string_view partialPath, CUnpacker& unpacker) {
  DownloadResume resume;
  resume.partialPath = partialPath;
  const std::uint64_t owner = unpacker.number();
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
  if (unpacker.left() != 0) {
    resume.owner = static_cast<std::uint32_t>(owner);
    resume.finalName = unpacker.text();
  }
  if (!unpacker.ok()) {
    return std::nullopt;
  }
  resume.written = resume.durable;
  return resume;
}

void pack(CPacker& packer, const SourceVersion& source) {
  packer.number(source.device);
  packer.number(source.inode);
  packer.number(source.size);
  packer.number(unsignedTime(source.modified));
  packer.number(unsignedTime(source.touched));
}

SourceVersion unpackedSource(CUnpacker& unpacker) {
  SourceVersion source;
  source.device = unpacker.number();
  source.inode = unpacker.number();
  source.size = unpacker.number();
  source.modified = static_cast<std::int64_t>(unpacker.number());
  source.touched = static_cast<std::int64_t>(unpacker.number());
  return source;
}

void pack(CPacker& packer, const UploadSession& session) {
  packer.reserve(session.parts.size() * 72 + 512);
  packer.text(kSession);
  packer.text(session.uploadId);
  packer.text(session.url);
  packer.number(session.headers.size());
  for (const auto& [name, value] : session.headers) {
    packer.text(name);
    packer.text(value);
  }
  packer.number(session.partSize);
  pack(packer, session.source);
  packer.number(session.completing ? 1 : 0);
  packer.number(session.parts.size());
  for (const SentPart& part : session.parts) {
    packer.number(part.number);
    packer.text(part.etag);
    packer.text(part.md5);
  }
}

bool isPlausible(const UploadSession& session) {
  return session.partSize != 0 && session.source.size != 0 &&
         (session.source.size - 1) / session.partSize < UploadSession::kMaxParts;
}

std::optional<TransferResume> unpackedSession(CUnpacker& unpacker) {
  UploadSession session;
  session.uploadId = unpacker.text();
  session.url = unpacker.text();
  const std::uint64_t headers = unpacker.number();
  for (std::uint64_t count = 0; count < headers && unpacker.ok(); ++count) {
    std::string name(unpacker.text());
    session.headers.emplace_back(std::move(name), std::string(unpacker.text()));
  }
  session.partSize = unpacker.number();
  session.source = unpackedSource(unpacker);
  session.completing = unpacker.number() != 0;
  const std::uint64_t parts = unpacker.number();
  if (!unpacker.ok() || !session.begun() || !isPlausible(session)) {
    return std::nullopt;
  }
  for (std::uint64_t count = 0; count < parts && unpacker.ok(); ++count) {
    const std::uint64_t number = unpacker.number();
    if (number == 0 || number > session.partCount()) {
      return std::nullopt;
    }
    std::string etag(unpacker.text());
    session.parts.push_back(
        {static_cast<std::uint32_t>(number), std::move(etag), std::string(unpacker.text())});
  }
  if (!unpacker.ok()) {
    return std::nullopt;
  }
  return session;
}

}  // namespace

std::string packed(const TransferResume& resume) {
  CPacker packer;
  if (resume.isUpload()) {
    pack(packer, resume.upload());
  } else {
    pack(packer, resume.download());
  }
  return packer.bytes();
}

std::optional<TransferResume> unpackedResume(std::string_view bytes) {
  CUnpacker unpacker(bytes);
  const std::string_view first = unpacker.text();
  if (!unpacker.ok()) {
    return std::nullopt;
  }
  return first == kSession ? unpackedSession(unpacker) : unpackedDownload(first, unpacker);
}

std::string packed(const Orphan& orphan) {
  CPacker packer;
  packer.number(unsignedTime(orphan.since));
  packer.text(orphan.folder);
  packer.text(packed(orphan.resume));
  return packer.bytes();
}

std::optional<Orphan> unpackedOrphan(std::string_view bytes) {
  CUnpacker unpacker(bytes);
  Orphan orphan;
  orphan.since = static_cast<std::int64_t>(unpacker.number());
  orphan.folder = unpacker.text();
  auto resume = unpackedResume(unpacker.text());
  if (!unpacker.ok() || !resume) {
    return std::nullopt;
  }
  orphan.resume = std::move(*resume);
  return orphan;
}

}  // namespace zt_transfers
