#include "simulation/virtual_servers.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <random>

#include "base/ascii.h"
#include "hash/md5.h"

namespace zt_transfers::test {
namespace {

constexpr std::uint64_t kBandwidth = 100'000;  // bytes a second
constexpr std::uint64_t kSlowBandwidth = 300;

std::string dateText(std::int64_t seconds) {
  const std::time_t time = seconds;
  std::tm parts{};
  ::gmtime_r(&time, &parts);
  std::array<char, 64> text{};
  const std::size_t size =
      std::strftime(text.data(), text.size(), "%a, %d %b %Y %H:%M:%S GMT", &parts);
  return {text.data(), size};
}

unsigned originIn(const std::string& url) {
  return static_cast<unsigned>(std::strtoul(url.c_str() + sizeof("http://o") - 1, nullptr, 10));
}

unsigned numberAfter(const std::string& text, std::string_view name) {
  const auto at = text.find(name);
  return at == std::string::npos
             ? 0
             : static_cast<unsigned>(std::strtoul(text.c_str() + at + name.size(), nullptr, 10));
}

std::string digestOf(const std::string& content) {
  CMd5 md5;
  md5.add(content.data(), content.size());
  return md5.finish();
}

std::string raw(const std::string& hex) {
  std::string bytes;
  for (std::size_t at = 0; at + 1 < hex.size(); at += 2) {
    bytes.push_back(static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16)));
  }
  return bytes;
}

}  // namespace

const char* textOf(OriginTrouble trouble) {
  static constexpr std::array<const char*, kOriginTroubles> kTexts{"well",
                                                                   "refuses connections",
                                                                   "cannot be found",
                                                                   "is not trusted",
                                                                   "answers 503",
                                                                   "answers 503 with Retry-After",
                                                                   "answers 502",
                                                                   "answers 500",
                                                                   "closes connections",
                                                                   "cuts connections",
                                                                   "says nothing",
                                                                   "is slow"};
  return kTexts[static_cast<std::size_t>(trouble)];
}

std::string VirtualRequest::header(std::string_view name) const {
  const auto found = std::find_if(headers.begin(), headers.end(), [&](const auto& header) {
    return equalsIgnoringCase(header.first, name);
  });
  return found == headers.end() ? "" : found->second;
}

void CVirtualServers::setTrouble(unsigned origin, OriginTrouble trouble) {
  troubles_[origin] = trouble;
  requests_[origin].clear();
}

void CVirtualServers::heal() {
  troubles_.clear();
  requests_.clear();
}

std::string CVirtualServers::contentOf(unsigned number, unsigned version, std::uint64_t size) {
  std::minstd_rand random(number * 7919 + version * 104'729 + 1);
  std::string content(size, '\0');
  std::generate(content.begin(), content.end(), [&] { return static_cast<char>(random() >> 8); });
  return content;
}

bool CVirtualServers::isVersionOf(unsigned number, const std::string& content) const {
  const OfferedFile& file = offered_.at(number);
  for (unsigned version = 0; version <= file.version; ++version) {
    if (content == contentOf(number, version, file.size)) {
      return true;
    }
  }
  return false;
}

OriginTrouble CVirtualServers::troubleOf(const std::string& url) const {
  const auto found = troubles_.find(originIn(url));
  return found == troubles_.end() ? OriginTrouble::kNone : found->second;
}

void CVirtualServers::count(const std::string& url) {
  std::vector<TimePoint>& times = requests_[originIn(url)];
  times.push_back(world_.now());
  const auto inWindow = times.end() - std::lower_bound(times.begin(), times.end(),
                                                       world_.now() - std::chrono::seconds(10));
  busiest_ = std::max(busiest_, static_cast<std::size_t>(inWindow));
}

VirtualReply CVirtualServers::onConnect(const std::string& url) {
  VirtualReply reply;
  reply.bytesPerSecond = kBandwidth;
  switch (troubleOf(url)) {
    case OriginTrouble::kNone:
      return reply;
    case OriginTrouble::kRefused:
      reply.failure = CURLE_COULDNT_CONNECT;
      break;
    case OriginTrouble::kUnresolved:
      reply.failure = CURLE_COULDNT_RESOLVE_HOST;
      break;
    case OriginTrouble::kUntrusted:
      reply.failure = CURLE_PEER_FAILED_VERIFICATION;
      break;
    case OriginTrouble::kSlow:
      reply.bytesPerSecond = kSlowBandwidth;
      return reply;
    default:
      break;
  }
  count(url);
  return reply;
}

void CVirtualServers::checkResumed(const VirtualRequest& request) {
  if (request.url.find("/d/") == std::string::npos) {
    return;
  }
  const unsigned number = numberAfter(request.url, "/d/");
  if (resumable_.erase(number) != 0 && numberAfter(request.header("range"), "bytes=") == 0) {
    begunAgain_.insert(number);
  }
}

VirtualReply CVirtualServers::reply(const VirtualRequest& request) {
  checkResumed(request);
  VirtualReply reply;
  switch (troubleOf(request.url)) {
    case OriginTrouble::kBusy:
      return answer(503);
    case OriginTrouble::kBusyAfter:
      reply = answer(503);
      reply.head.headers["retry-after"] = std::to_string(world_.random(120));
      return reply;
    case OriginTrouble::kBadGateway:
      return answer(502);
    case OriginTrouble::kError:
      return answer(500);
    case OriginTrouble::kEmpty:
      reply.failure = CURLE_GOT_NOTHING;
      return reply;
    case OriginTrouble::kSilent:
      reply.silent = true;
      reply.cutAt = 0;
      return reply;
    case OriginTrouble::kCut:
      reply = healthy(request);
      reply.failure = CURLE_RECV_ERROR;
      reply.cutAt = world_.random(reply.body.size() + 1);
      return reply;
    case OriginTrouble::kSlow:
      reply = healthy(request);
      reply.bytesPerSecond = kSlowBandwidth;
      return reply;
    default:
      return healthy(request);
  }
}

VirtualReply CVirtualServers::healthy(const VirtualRequest& request) {
  if (request.url.find("/d/") != std::string::npos) {
    return offer(request, numberAfter(request.url, "/d/"));
  }
  const auto query = request.url.find('?');
  const unsigned number = numberAfter(request.url, "/u/");
  return query == std::string::npos ? store(request, number)
                                    : multipart(request, number, request.url.substr(query + 1));
}

VirtualReply CVirtualServers::offer(const VirtualRequest& request, unsigned number) const {
  const auto found = offered_.find(number);
  if (found == offered_.end()) {
    return answer(404);
  }
  const OfferedFile& file = found->second;
  const std::string tag = "\"" + std::to_string(number) + "-" + std::to_string(file.version) + "\"";
  const std::string date = dateText(1'600'000'000 + std::int64_t{file.version} * 1000);
  VirtualReply reply = answer(200, contentOf(number, file.version, file.size));
  reply.head.headers[file.etag ? "etag" : "last-modified"] = file.etag ? tag : date;
  if (file.ranges) {
    reply.head.headers["accept-ranges"] = "bytes";
  }
  const std::string range = request.header("range");
  const std::string condition = request.header("if-range");
  if (file.ranges && !range.empty() &&
      (condition.empty() || condition == (file.etag ? tag : date))) {
    const std::uint64_t begin = numberAfter(range, "bytes=");
    const std::uint64_t last = numberAfter(range, "-");
    const std::uint64_t end = last == 0 ? file.size : std::min(file.size, last + 1);
    const std::string total = "/" + std::to_string(file.size);
    if (begin >= file.size) {
      reply.body.clear();
      reply.head.status = 416;
      reply.head.headers["content-range"] = "bytes *" + total;
    } else {
      reply.body = reply.body.substr(begin, end - begin);
      reply.head.status = 206;
      reply.head.headers["content-range"] =
          "bytes " + std::to_string(begin) + "-" + std::to_string(end - 1) + total;
    }
  }
  if (file.length || reply.head.status != 200) {
    reply.head.headers["content-length"] = std::to_string(reply.body.size());
  }
  return reply;
}

VirtualReply CVirtualServers::store(const VirtualRequest& request, unsigned number) {
  if (request.method == "PUT") {
    stored_[number] = request.body;
  } else if (stored_.count(number) == 0) {
    return answer(404);
  }
  VirtualReply reply = answer(200);
  reply.head.headers["etag"] = "\"" + digestOf(stored_.at(number)) + "\"";
  return reply;
}

VirtualReply CVirtualServers::multipart(const VirtualRequest& request, unsigned number,
                                        const std::string& query) {
  if (query == "uploads") {
    const std::string id = "U" + std::to_string(++lastUpload_);
    uploads_[id].number = number;
    return answer(200, "<InitiateMultipartUploadResult><UploadId>" + id +
                           "</UploadId></InitiateMultipartUploadResult>");
  }
  const std::string id = "U" + std::to_string(numberAfter(query, "uploadId=U"));
  const auto upload = uploads_.find(id);
  if (upload == uploads_.end()) {
    return answer(404, "<Error><Code>NoSuchUpload</Code></Error>");
  }
  if (request.method == "PUT") {
    upload->second.parts[numberAfter(query, "partNumber=")] = request.body;
    VirtualReply reply = answer(200);
    reply.head.headers["etag"] = "\"" + digestOf(request.body) + "\"";
    return reply;
  }
  if (request.method == "DELETE") {
    uploads_.erase(upload);
    return answer(204);
  }
  if (request.method == "POST") {
    return complete(id);
  }
  std::string list = "<ListPartsResult>";
  for (const auto& [part, content] : upload->second.parts) {
    list += "<Part><PartNumber>" + std::to_string(part) + "</PartNumber><ETag>" +
            digestOf(content) + "</ETag><Size>" + std::to_string(content.size()) + "</Size></Part>";
  }
  return answer(200, list + "<IsTruncated>false</IsTruncated></ListPartsResult>");
}

VirtualReply CVirtualServers::complete(const std::string& id) {
  const Upload upload = uploads_.at(id);
  uploads_.erase(id);
  std::string whole;
  std::string digests;
  for (const auto& [part, content] : upload.parts) {
    whole += content;
    digests += raw(digestOf(content));
  }
  stored_[upload.number] = whole;
  const std::string tag = digestOf(digests) + "-" + std::to_string(upload.parts.size());
  return answer(200, "<CompleteMultipartUploadResult><ETag>" + tag +
                         "</ETag></CompleteMultipartUploadResult>");
}

VirtualReply CVirtualServers::answer(long status, std::string body) const {
  VirtualReply reply;
  reply.bytesPerSecond = kBandwidth;
  reply.head.status = status;
  reply.head.headers["date"] = dateText(world_.trueSeconds());
  reply.body = std::move(body);
  return reply;
}

}  // namespace zt_transfers::test
