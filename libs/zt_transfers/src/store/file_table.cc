#include "store/file_table.h"

#include <algorithm>
#include <utility>

namespace zt_transfers {

void CFileTable::append(std::string_view fileId, CPackedSpec spec) {
  Entry& entry = entries_.emplace_back();
  entry.spec = std::move(spec);
  entry.fileId = ids_.add(fileId);
  entry.unwritten = true;
  index_.insert(size() - 1);
}

void CFileTable::restore(std::string_view fileId) {
  entries_.emplace_back().fileId = ids_.add(fileId);
  index_.insert(size() - 1);
}

void CFileTable::replace(std::uint32_t at, CPackedSpec spec) {
  Entry& entry = entries_.at(at);
  entry.spec = std::move(spec);
  entry.unwritten = true;
  setDurable(entry, false);
  entry.unreadable = false;
  entry.forgotten = false;
}

void CFileTable::remove(std::uint32_t at) {
  index_.erase(at);
  Entry& entry = entries_.at(at);
  const char* fileId = entry.fileId;
  setDurable(entry, false);
  entry = Entry();
  entry.fileId = fileId;
}

std::string_view CFileTable::fileId(std::uint32_t at) const {
  const char* place = entries_.at(at).fileId;
  return place == nullptr ? std::string_view() : CTextArena::at(place);
}

bool CFileTable::beginWrite(std::uint32_t at) {
  Entry& entry = entries_.at(at);
  return std::exchange(entry.unwritten, false) && !entry.spec.empty();
}

bool CFileTable::endWrite(std::uint32_t at) {
  Entry& entry = entries_.at(at);
  setDurable(entry, !entry.unwritten && !entry.spec.empty());
  return entry.durable;
}

void CFileTable::failWrite(std::uint32_t at) {
  Entry& entry = entries_.at(at);
  entry.unwritten = !entry.spec.empty();
}

CPackedSpec CFileTable::release(std::uint32_t at) {
  Entry& entry = entries_.at(at);
  if (!entry.durable) {
    return {};
  }
  setDurable(entry, false);
  return std::move(entry.spec);
}

void CFileTable::forget(std::uint32_t at) {
  Entry& entry = entries_.at(at);
  setDurable(entry, false);
  entry.spec.reset();
  entry.forgotten = true;
}

void CFileTable::setDurable(Entry& entry, bool durable) {
  if (entry.durable != durable) {
    entry.durable = durable;
    held_ += durable ? 1 : std::size_t(-1);
    heldHere_ += durable ? 1 : std::size_t(-1);
  }
}

CFileTable::Coming CFileTable::ask(std::uint32_t at) {
  Entry& entry = entries_.at(at);
  if (std::exchange(entry.unreadable, false)) {
    return Coming::kUnreadable;
  }
  return std::exchange(entry.coming, true) ? Coming::kAlready : Coming::kAsked;
}

void CFileTable::arrive(std::uint32_t at, std::string_view bytes) {
  Entry& entry = entries_.at(at);
  if (!entry.spec.empty()) {
    return;
  }
  CPackedSpec spec = CPackedSpec::of(bytes);
  if (!spec.unpacked()) {
    return;
  }
  entry.spec = std::move(spec);
  setDurable(entry, true);
}

void CFileTable::endArrival(std::uint32_t from, std::uint32_t to) {
  for (std::uint32_t at = from; at < std::min(to, size()); ++at) {
    Entry& entry = entries_[at];
    if (std::exchange(entry.coming, false)) {
      entry.unreadable = entry.spec.empty();
    }
  }
}

std::optional<std::uint32_t> CFileTable::readAhead(std::uint32_t at) {
  if (ahead_ >= size() || at + kWindow / 2 < ahead_) {
    return std::nullopt;
  }
  const std::uint32_t from = std::max(ahead_, at);
  ahead_ = from + kWindow;
  const auto first = entries_.begin() + from;
  const auto last = entries_.begin() + std::min(ahead_, size());
  const bool missing =
      std::any_of(first, last, [](const Entry& entry) { return entry.spec.empty(); });
  return missing ? std::optional(from) : std::nullopt;
}

}  // namespace zt_transfers
