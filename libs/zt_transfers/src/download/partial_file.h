#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "base/unique_fd.h"
#include "download/content_hash.h"
#include "download/partial_place.h"
#include "download/target_path.h"
#include "engine/download_resume.h"

namespace zt_transfers {

// The hidden file beside its final place into which a download arrives. What is in it is kept
// when the object goes, unless it was told to be discarded.
//
// Thread: one at a time; calls block, and throw std::system_error. Once it is open, beside one
// that writes one may hash and one make a checkpoint. `discard` and `resume` from any thread.
class CPartialFile {
 public:
  struct Plan {
    std::string folder;  // the group's
    TargetPath target;
    std::string key;             // names this file of this group, and no other
    std::uint64_t size = 0;      // bytes, as the page said; 0: it did not say
    std::uint64_t modified = 0;  // milliseconds since 1970; 0: none
    std::string md5;             // lower-case hexadecimal; empty: not to be checked
  };
  enum class Found { kNothing, kPartial, kFinalized };

  explicit CPartialFile(Plan plan)
      : plan_(std::move(plan)), place_(plan_.folder, plan_.target, plan_.key) {}
  ~CPartialFile();
  CPartialFile(const CPartialFile&) = delete;
  CPartialFile& operator=(const CPartialFile&) = delete;

  // Goes on with what is left of an earlier attempt. kFinalized: it has its final name already, and
  // that is durable. When it throws, what is left can still be gone on with.
  Found reopen(const DownloadResume& resume);
  // Writes; the first time, or after `restart`, into an empty file.
  void write(std::uint64_t offset, const char* data, std::size_t size);
  // Makes it for `size` bytes, if it is not there yet, and reserves the room; kUnknown: as it
  // comes.
  void create(std::uint64_t size);
  // Forgets all content; the version that comes now has this validator and size.
  void restart(const std::string& validator, std::uint64_t size);

  // Takes written bytes into the digest, in their order: the ones at `hashed`, or those up to
  // `end`, which are read back.
  bool hashes() const { return !plan_.md5.empty(); }
  std::uint64_t hashed() const { return hash_ ? hash_->position() : 0; }
  void hash(const char* data, std::size_t size) { openHash().add(data, size); }
  void hashWritten(std::uint64_t end) { openHash().readBack(file_.get(), end); }

  // All of its content has this digest: nothing more of it is to be hashed.
  void setDigest(std::string digest) { digest_ = std::move(digest); }

  // Makes what is written durable.
  void checkpoint();
  // Nothing when the content is what it should be, else what is wrong.
  std::optional<std::string> verify(std::uint64_t size);
  // Sets its times; with `alone` it becomes durable, with all new folders of its file system.
  void sync(bool alone);
  // What is written is durable, whoever made it so.
  void noteSynced();
  // All of what has been written to its file system becomes durable, with new folders; false, and
  // only the file does, where there is no such operation.
  bool syncFileSystem() const;
  // After a sync of the file system: throws if any of its bytes could not be written since it was
  // last synced. Such a sync tells only what has failed since the file was opened that it is
  // called with.
  void checkWritten() const;
  // Gives it its final name, which then is durable only after syncFolder.
  std::string publish() { return place_.publish(); }
  void syncFolder() const { place_.syncFolder(); }

  // It has its name, and nothing more is to be done with it.
  void close();

  // It goes with this object, or at once.
  void discard() { discarded_ = true; }
  void discardNow();
  bool discarded() const { return discarded_; }

  bool open() const { return file_.valid(); }
  DownloadResume resume() const;
  // Valid once they are open.
  bool sameFolder(const CPartialFile& other) const { return place_.sameFolder(other.place_); }
  bool sameFileSystem(const CPartialFile& other) const {
    return place_.sameFileSystem(other.place_);
  }

 private:
  void adopt(CUniqueFd file);
  void reserve(std::uint64_t size);
  void noteWritten(ByteSpan span);
  CContentHash& openHash();
  std::string digest(std::uint64_t size);

  const Plan plan_;
  std::atomic<bool> discarded_{false};

  CPartialPlace place_;
  CUniqueFd file_;
  std::optional<CContentHash> hash_;
  std::optional<std::string> digest_;

  mutable std::mutex mutex_;
  DownloadResume resume_;  // its spans are guarded by mutex_ where several threads are at it
};

}  // namespace zt_transfers
