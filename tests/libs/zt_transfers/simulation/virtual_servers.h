#pragma once

#include <curl/curl.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "http/http_transport.h"
#include "simulation/world.h"

namespace zt_transfers::test {

// What is wrong with a server, or with the network on the way to it.
enum class OriginTrouble {
  kNone,
  kRefused,
  kUnresolved,
  kUntrusted,
  kBusy,       // 503
  kBusyAfter,  // 503, and names a time
  kBadGateway,
  kError,   // 500
  kEmpty,   // closes each connection without a response
  kCut,     // breaks connections in the middle
  kSilent,  // takes requests and says nothing
  kSlow,
};
constexpr int kOriginTroubles = 12;
const char* textOf(OriginTrouble trouble);

// A file that servers offer.
struct OfferedFile {
  std::uint64_t size = 0;  // bytes
  unsigned version = 0;
  bool ranges = true;
  bool etag = true;  // else a date
  bool length = true;
};

struct VirtualReply {
  CURLcode failure = CURLE_OK;  // the connection breaks after `cutAt` bytes of the body
  bool silent = false;          // nothing follows after `cutAt` bytes
  std::uint64_t cutAt = ~std::uint64_t{0};
  std::uint64_t bytesPerSecond = 0;
  HttpResponse head{};  // without a body
  std::string body{};
};

struct VirtualRequest {
  std::string method;
  std::string url;
  HttpHeaders headers;
  std::string body;

  std::string header(std::string_view name) const;
};

// The origins of a scenario: http://o0/, http://o1/ … with the files that they offer (/d/NUMBER)
// and those that they were sent (/u/NUMBER, in parts as well).
class CVirtualServers {
 public:
  explicit CVirtualServers(CWorld& world) : world_(world) {}

  void setTrouble(unsigned origin, OriginTrouble trouble);
  void heal();

  std::map<unsigned, OfferedFile>& offered() { return offered_; }
  static std::string contentOf(unsigned number, unsigned version, std::uint64_t size);
  // Whether these bytes are the file's, in one of its versions.
  bool isVersionOf(unsigned number, const std::string& content) const;

  // Files that were stored; by their number.
  const std::map<unsigned, std::string>& stored() const { return stored_; }
  std::size_t openUploads() const { return uploads_.size(); }
  // Highest number of requests that a troubled origin got in ten seconds.
  std::size_t busiestTenSeconds() const { return busiest_; }

  // These have their first bytes on the client's disk.
  void setResumable(std::set<unsigned> files) { resumable_ = std::move(files); }
  // Those of them whose next request asked for all bytes.
  const std::set<unsigned>& begunAgain() const { return begunAgain_; }

  // Before the request's body is read; only its failure or silence counts.
  VirtualReply onConnect(const std::string& url);
  VirtualReply reply(const VirtualRequest& request);

 private:
  struct Upload {
    unsigned number = 0;
    std::map<unsigned, std::string> parts;
  };

  OriginTrouble troubleOf(const std::string& url) const;
  void count(const std::string& url);
  void checkResumed(const VirtualRequest& request);
  VirtualReply healthy(const VirtualRequest& request);
  VirtualReply offer(const VirtualRequest& request, unsigned number) const;
  VirtualReply store(const VirtualRequest& request, unsigned number);
  VirtualReply multipart(const VirtualRequest& request, unsigned number, const std::string& query);
  VirtualReply complete(const std::string& id);
  VirtualReply answer(long status, std::string body = "") const;

  CWorld& world_;
  std::map<unsigned, OriginTrouble> troubles_;
  std::map<unsigned, OfferedFile> offered_;
  std::map<unsigned, std::string> stored_;
  std::map<std::string, Upload> uploads_;
  unsigned lastUpload_ = 0;
  std::set<unsigned> resumable_;
  std::set<unsigned> begunAgain_;
  std::map<unsigned, std::vector<TimePoint>> requests_;  // of troubled origins
  std::size_t busiest_ = 0;
};

}  // namespace zt_transfers::test
