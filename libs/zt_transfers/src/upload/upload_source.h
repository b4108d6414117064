#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/worker_pool.h"
#include "http/http_loop.h"
#include "upload/source_reader.h"

namespace zt_transfers {

// A file, or a span of one, on its way into a request: the pool reads ahead, the network thread
// takes what is there. What the system has in its cache the network thread reads itself.
//
// Thread: the loop's, on which the listener is called, too. After close() no call follows.
class CUploadSource : public std::enable_shared_from_this<CUploadSource> {
 public:
  class IListener {
   public:
    // The file is open and, unless it was only to be looked at, its beginning is there. May
    // destroy the listener.
    virtual void onSourceOpened(const SourceVersion& version) = 0;
    // A read that gave nothing would give something now.
    virtual void onSourceReady() = 0;
    // The file cannot be sent. May destroy the listener.
    virtual void onSourceFailed(const Trouble& trouble) = 0;

   protected:
    ~IListener() = default;
  };

  CUploadSource(CHttpLoop& loop, CWorkerPool& pool, ReadRequest readRequest, IListener& listener);

  void open();
  void close() { listener_ = nullptr; }

  // How many bytes can be taken now; 0: none yet, or none any more.
  std::size_t available() const;
  // Takes at most `room` bytes and gives their number.
  std::size_t take(char* to, std::size_t room);
  // All of it, if none was taken and it is one chunk; stays valid as long as this source.
  std::string_view takeAll();
  // Passes over what is there.
  void skip();
  // Back to the first byte; only as long as the first chunk is the current one.
  bool rewind();

  // Whether the last chunk was read.
  bool readAll() const { return readAll_; }
  // Of all that was read, once that is so; empty when not asked for.
  const std::string& md5() const { return md5_; }

 private:
  struct Result {
    bool opened = false;
    bool statOnly = false;
    SourceVersion version;
    SourceChunk chunk;
    std::optional<Trouble> problem;
  };

  static constexpr std::size_t kReadAhead = 2;  // chunks

  void readAhead();
  bool takeCached();
  void post(bool open);
  void arrive(Result& result);
  void passOn();

  CHttpLoop& loop_;
  CWorkerPool& pool_;
  IListener* listener_;
  bool cached_;  // the last read from the system's cache gave something
  // Used by one pool job at a time, and while there is none by this; jobs hold their own reference.
  const std::shared_ptr<CSourceReader> reader_;

  std::list<SourceChunk> chunks_;  // the first one is being taken
  std::size_t offset_ = 0;         // in the first one
  std::unique_ptr<char[]> spare_;  // memory of a chunk, for the next one
  bool inFirstChunk_ = true;
  bool reading_ = false;
  bool readAll_ = false;
  std::string md5_;
};

}  // namespace zt_transfers
