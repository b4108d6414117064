#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "base/file_ops.h"
#include "base/mutex.h"
#include "base/unique_fd.h"
#include "download/content_hash.h"
#include "download/partial_entry.h"
#include "download/target_path.h"
#include "engine/attempt.h"
#include "engine/download_resume.h"

namespace zt_transfers {

// The hidden file, in the folder of the final one, that a download is written into. It stays on
// the disk when the object is destroyed, unless it was discarded.
//
// Thread: one at a time; calls block and throw std::system_error. Once the file is open, one thread
// may write while another hashes and a third makes a checkpoint. `discard` and `resume` may be
// called on any thread.
class CPartialFile {
 public:
  struct Plan {
    std::string folder;  // the group's
    TargetPath target;
    std::string key;             // identifies this file among those of all queues
    std::uint64_t size = 0;      // bytes, as announced by the page; 0: not announced
    std::uint64_t modified = 0;  // milliseconds since 1970; 0: none
    std::string md5;             // lower-case hexadecimal; empty: not checked
    std::string origin;          // the URL without what could be secret; empty: not noted
  };
  enum class Found { kNothing, kPartial, kFinalized };
  enum class Unsynced { kSync, kLeave };

  // Throws std::invalid_argument for a path that parseTargetPath rejects.
  static Plan planFor(const StartOrder& order);

  // `ops` must outlive the file.
  CPartialFile(IFileOps& ops, Plan plan)
      : ops_(ops), plan_(std::move(plan)), entry_(ops, plan_.folder, plan_.target, plan_.key) {}
  ~CPartialFile();
  CPartialFile(const CPartialFile&) = delete;
  CPartialFile& operator=(const CPartialFile&) = delete;

  // Continues an earlier attempt's file. kFinalized: it already has its final name, durably. After
  // an exception the next attempt can still continue the file. An object that has served an earlier
  // attempt goes on with what it knows itself, and opens nothing if it is open.
  Found reopen(const DownloadResume& resume);
  // Prepares an object that has served an earlier attempt for another one. False when it cannot
  // serve that one.
  bool renew(const StartOrder& order);
  // Closes the file for now.
  void park(Unsynced unsynced);
  // Writes. The first call, and the first after `restart`, writes into an empty file.
  void write(std::uint64_t offset, const char* data, std::size_t size);
  // Creates the file if it does not exist yet, and reserves `size` bytes; kUnknown: reserves none.
  void create(std::uint64_t size);
  // Discards all content; the bytes that follow belong to a version with this validator and size.
  void restart(const std::string& validator, std::uint64_t size);

  // Adds written bytes to the digest, in file order: those at `hashed` from memory, or those up to
  // `end`, which are read back.
  bool hashes() const { return !plan_.md5.empty(); }
  std::uint64_t hashed() const { return hash_ ? hash_->position() : 0; }
  void hash(const char* data, std::size_t size) { openHash().add(data, size); }
  void hashWritten(std::uint64_t end) { openHash().readBack(ops_, file_.get(), end); }

  // Sets the digest of the complete content, so that nothing more has to be hashed.
  void setDigest(std::string digest) { digest_ = std::move(digest); }

  // Makes written bytes durable. When this or another sync of the file fails, the system may have
  // dropped what it could not write, and later syncs would not tell: all bytes that are not durable
  // then count as missing.
  void checkpoint();
  // Returns the mismatch if the content is not as expected.
  std::optional<std::string> verify(std::uint64_t size);
  // Sets the file's times and notes where it comes from; with `alone` also makes it durable, with
  // all new folders of its file system.
  void sync(bool alone);
  // Records that another file's sync has made all written bytes durable.
  void noteSynced();
  // Makes everything written to the file system durable, including new folders. False where the
  // file system has no such call: then only this file is durable.
  bool syncFileSystem();
  // After a sync of the file system: throws if any of this file's bytes could not be written since
  // it was last synced.
  void checkWritten();
  // Chooses a final name that no file has now; resume() tells it.
  void chooseName();
  // Gives the file that name, which is durable only after syncFolder. False when another file has
  // got the name meanwhile.
  bool publish() { return entry_.publish(); }
  void syncFolder() const { entry_.syncFolder(); }

  // Closes the file, which has its final name.
  void close();

  // Removes the file, together with this object or at once.
  void discard() { discarded_ = true; }
  void discardNow();
  bool discarded() const { return discarded_; }

  bool open() const { return file_.valid(); }
  DownloadResume resume() const;
  // Whether this is the orphan's partial file.
  bool isOrphan(const Orphan& orphan) const {
    return plan_.folder == orphan.folder && !orphan.resume.isUpload() &&
           resume().partialPath == orphan.resume.download().partialPath;
  }
  // Both files must be open.
  bool sameFolder(const CPartialFile& other) const { return entry_.sameFolder(other.entry_); }
  bool sameTarget(const CPartialFile& other) const { return entry_.sameTarget(other.entry_); }
  bool sameFileSystem(const CPartialFile& other) const {
    return entry_.sameFileSystem(other.entry_);
  }

 private:
  void adopt(CUniqueFd file);
  void setResume(DownloadResume resume);
  void reserve(std::uint64_t size);
  void noteWritten(ByteSpan span);
  [[noreturn]] void failToSync();
  CContentHash& openHash();
  std::string digest(std::uint64_t size);

  bool isFinalized(const DownloadResume& known) const;
  void keepOnlyDurable();
  void forget();

  IFileOps& ops_;
  Plan plan_;
  std::atomic<bool> discarded_{false};

  CPartialEntry entry_;
  CUniqueFd file_;
  std::optional<CContentHash> hash_;
  std::optional<std::string> digest_;

  mutable CMutex mutex_;
  DownloadResume resume_ GUARDED_BY(mutex_);
  bool lost_ GUARDED_BY(mutex_) = false;  // a sync has failed
};

}  // namespace zt_transfers
