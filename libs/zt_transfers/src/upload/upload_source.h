#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/executor.h"
#include "http/http_transport.h"
#include "upload/source_reader.h"

namespace zt_transfers {

// Feeds a file, or a span of it, to a request: the pool reads ahead, the network thread consumes.
// Bytes in the page cache are read by the network thread itself.
//
// Thread: the loop's, on which the listener is called, too. After close() no call follows.
class CUploadSource : public std::enable_shared_from_this<CUploadSource> {
 public:
  class IListener {
   public:
    // The file is open and its first chunk is available.
    virtual void onSourceOpened(const SourceVersion& version) = 0;
    // Bytes are available after there were none.
    virtual void onSourceReady() = 0;
    // The file cannot be sent.
    virtual void onSourceFailed(const AttemptOutcome& outcome) = 0;

   protected:
    ~IListener() = default;
  };

  CUploadSource(IHttpTransport& loop, IExecutor& pool, ReadRequest readRequest,
                IListener& listener);

  void open();
  void close() { listener_ = nullptr; }

  // Bytes that can be taken now; 0: none yet, or all were taken.
  std::size_t available() const;
  // Takes at most `room` bytes and returns their number.
  std::size_t take(char* to, std::size_t room);
  // All bytes, if none was taken and there is only one chunk; valid as long as this source.
  std::string_view takeAll();
  // Takes and drops all available bytes.
  void skip();
  // Back to the first byte; false once the first chunk was used up.
  bool rewind();

  // Whether the last chunk was read.
  bool readAll() const { return readAll_; }
  // Digest of all bytes, once readAll(); empty when not asked for.
  const std::string& md5() const { return md5_; }

 private:
  struct Result {
    bool opened = false;
    SourceVersion version;
    SourceChunk chunk;
    std::optional<AttemptOutcome> failure;
  };

  static constexpr std::size_t kReadAhead = 2;  // chunks

  void readAhead();
  bool takeCached();
  void post(bool open);
  void arrive(Result& result);
  void passOn();

  IHttpTransport& loop_;
  IExecutor& pool_;
  IListener* listener_;
  bool cached_;  // the last read from the page cache succeeded
  // Used by at most one pool job at a time, and by this object while there is none. Jobs hold a
  // reference of their own.
  const std::shared_ptr<CSourceReader> reader_;

  std::list<SourceChunk> chunks_;  // the first one is being consumed
  std::size_t offset_ = 0;         // in the first one
  std::unique_ptr<char[]> spare_;  // memory of a used chunk, for the next one
  bool inFirstChunk_ = true;
  bool reading_ = false;
  bool readAll_ = false;
  std::string md5_;
};

}  // namespace zt_transfers
