#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/unique_fd.h"

namespace zt_transfers::test {

// What the server does with one request instead of storing the body and answering 200, or of
// giving the object.
struct Fault {
  enum class Kind {
    kNone,                  // stores and answers, with `headers` added
    kStatus,                // takes the body and answers `status` with `headers` and `body`
    kEarlyStatus,           // the same without waiting for the body, then closes
    kResetAfter,            // resets the connection after `bytes` of the body
    kCloseWithoutResponse,  // takes the body, then closes
    kStall,                 // reads nothing of the body and says nothing until released
    kHold,                  // takes the body and answers once released
    kETag,                  // stores and answers with the tag `body`
    kNoETag,
    kEndlessResponse,  // takes the body and sends a byte of the response now and then
    kSlow,             // takes or gives `bytes` a second
    // For GET only:
    kCloseAfter,      // closes the connection after `bytes` of the body
    kNoRanges,        // gives all of it, whatever was asked for
    kIgnoresIfRange,  // gives the range of another version, with the tag `body`
    kShiftedRange,    // gives a range that begins `bytes` later than asked for
    kShortRange,      // gives `bytes` of a range at most
    kNoTotal,         // the same, and does not say how much there is in all
    kEmptyRange,      // announces a range of a file of unknown length, and gives nothing of it
    kLongerLength,    // announces `bytes` more than it gives, then closes
    kNoLength,        // announces no length and closes after all but `bytes`
    kNoLastChunk,     // gives all of it in chunks, and closes before the one that ends them
    kExtraBytes,      // the same with `bytes` more than there are
    kMoreThanLength,  // sends `bytes` more than it announces, and keeps the connection
    kCorrupt,         // changes the byte at `bytes`
  };

  Kind kind = Kind::kNone;
  int status = 200;
  std::uint64_t bytes = 0;
  std::string body{};
  std::vector<std::pair<std::string, std::string>> headers{};
};

namespace fault {
inline Fault none() {
  return {};
}
inline Fault status(int code, std::vector<std::pair<std::string, std::string>> headers = {}) {
  return {.kind = Fault::Kind::kStatus, .status = code, .headers = std::move(headers)};
}
inline Fault earlyStatus(int code) {
  return {.kind = Fault::Kind::kEarlyStatus, .status = code};
}
inline Fault resetAfter(std::uint64_t bytes) {
  return {.kind = Fault::Kind::kResetAfter, .bytes = bytes};
}
inline Fault closeWithoutResponse() {
  return {.kind = Fault::Kind::kCloseWithoutResponse};
}
inline Fault stall() {
  return {.kind = Fault::Kind::kStall};
}
inline Fault hold() {
  return {.kind = Fault::Kind::kHold};
}
inline Fault etag(std::string tag) {
  return {.kind = Fault::Kind::kETag, .body = std::move(tag)};
}
inline Fault noETag() {
  return {.kind = Fault::Kind::kNoETag};
}
inline Fault slow(std::uint64_t bytesPerSecond) {
  return {.kind = Fault::Kind::kSlow, .bytes = bytesPerSecond};
}
inline Fault of(Fault::Kind kind, std::uint64_t bytes = 0) {
  return {.kind = kind, .bytes = bytes};
}
inline Fault ignoresIfRange(std::string tag) {
  return {.kind = Fault::Kind::kIgnoresIfRange, .body = std::move(tag)};
}
inline Fault errorDocument(const std::string& code) {
  return {.kind = Fault::Kind::kStatus,
          .body = "<?xml version=\"1.0\"?>\n<Error><Code>" + code + "</Code></Error>"};
}
}  // namespace fault

// A small object store on loopback: what is PUT to a path can be read back with GET, also by
// ranges, and every request to a path can be made to fail in a way of its own.
//
// Thread: any; every connection has a thread.
class CFaultServer {
 public:
  struct Request {
    std::string method;
    std::string target;                          // path and query
    std::map<std::string, std::string> headers;  // names in lower case
    std::uint64_t bodySize = 0;
    int connection = 0;
  };

  // `port`: of a server that is gone, to take its place; 0: any.
  explicit CFaultServer(int port = 0);
  ~CFaultServer();
  CFaultServer(const CFaultServer&) = delete;
  CFaultServer& operator=(const CFaultServer&) = delete;

  std::string url(const std::string& path) const;
  int port() const { return port_; }

  // The next requests to `path` meet these faults, one each; those after them none.
  void plan(const std::string& path, std::vector<Fault> faults);
  // Every request to any path without a plan of its own meets this one.
  void planForAll(const Fault& fault);
  // Lets go what stalls or holds, now and from now on.
  void release();
  // Called with the number of body bytes that have arrived of the request to `path`, or were sent
  // of the answer to it.
  void watchBody(std::function<void(const std::string& path, std::uint64_t bytes)> watcher);

  void put(const std::string& path, const std::string& content);
  std::optional<std::string> object(const std::string& path) const;
  std::size_t objectCount() const;
  std::vector<Request> requests() const;
  std::vector<Request> requestsTo(const std::string& path) const;
  // Requests whose head has arrived and that have no answer yet, and the most there ever were.
  int open() const { return open_; }
  int maxOpen() const { return maxOpen_; }
  std::uint64_t bodyBytes() const { return bodyBytes_; }
  // Waits until this many requests were begun; false when that takes too long.
  bool waitForRequests(std::size_t count);

 private:
  class CConnection;

  void accept();
  void watched(const std::string& path, std::uint64_t bytes);
  Fault faultFor(const std::string& path);
  void begin(const Request& request);
  bool waitForRelease();

  CUniqueFd listener_;
  int port_ = 0;
  std::thread acceptor_;
  std::atomic<bool> stopping_{false};
  std::atomic<int> open_{0};
  std::atomic<int> maxOpen_{0};
  std::atomic<std::uint64_t> bodyBytes_{0};

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  // Guarded by mutex_.
  std::list<CConnection> connections_;
  std::map<std::string, std::deque<Fault>> plans_;
  Fault planForAll_;
  bool released_ = false;
  std::map<std::string, std::string> objects_;
  std::vector<Request> requests_;
  std::function<void(const std::string&, std::uint64_t)> watcher_;
};

}  // namespace zt_transfers::test
