#include "object_reply.h"

#include <algorithm>
#include <sstream>

#include "sandbox.h"

namespace zt_transfers::test {
namespace {

struct Range {
  std::size_t begin = 0;
  std::size_t end = 0;
};

// "bytes=a-" and "bytes=a-b" only; nothing else is ever asked for.
std::optional<Range> rangeOf(const CFaultServer::Request& request, std::size_t size) {
  const auto header = request.headers.find("range");
  if (header == request.headers.end()) {
    return std::nullopt;
  }
  const std::string text = header->second.substr(std::string("bytes=").size());
  const auto dash = text.find('-');
  const std::string last = text.substr(dash + 1);
  return Range{std::stoull(text.substr(0, dash)),
               last.empty() ? size : std::min<std::size_t>(std::stoull(last) + 1, size)};
}

std::string tagOf(const std::string& content, const Fault& fault) {
  switch (fault.kind) {
    case Fault::Kind::kNoETag:
      return "";
    case Fault::Kind::kETag:
    case Fault::Kind::kIgnoresIfRange:
      return fault.body;
    default:
      return "\"" + md5Of(content) + "\"";
  }
}

bool conditionHolds(const CFaultServer::Request& request, const std::string& tag,
                    const Fault& fault) {
  const auto condition = request.headers.find("if-range");
  return condition == request.headers.end() || condition->second == tag ||
         fault.kind == Fault::Kind::kIgnoresIfRange;
}

}  // namespace

ObjectReply replyTo(const CFaultServer::Request& request, const std::string& content,
                    const Fault& fault) {
  const std::string tag = tagOf(content, fault);
  auto range = rangeOf(request, content.size());
  if (fault.kind == Fault::Kind::kNoRanges || !conditionHolds(request, tag, fault)) {
    range.reset();
  }
  ObjectReply reply;
  std::string headers;
  for (const auto& [name, value] : fault.headers) {
    headers += name + ": " + value + "\r\n";
  }
  if (!tag.empty() && headers.find("ETag: ") == std::string::npos) {
    headers += "ETag: " + tag + "\r\n";
  }
  if (range && range->begin >= content.size()) {
    reply.head = "HTTP/1.1 416 Range Not Satisfiable\r\nContent-Range: bytes */" +
                 std::to_string(content.size()) + "\r\nContent-Length: 0\r\n" + headers + "\r\n";
    return reply;
  }
  if (range && fault.kind == Fault::Kind::kShiftedRange) {
    range->begin += fault.bytes;
  }
  const bool emptyRange = fault.kind == Fault::Kind::kEmptyRange;
  const bool noTotal = fault.kind == Fault::Kind::kNoTotal || emptyRange;
  if (range && (fault.kind == Fault::Kind::kNoTotal || fault.kind == Fault::Kind::kShortRange)) {
    range->end = std::min<std::size_t>(range->end, range->begin + fault.bytes);
  }
  const Range given = range.value_or(Range{0, content.size()});
  reply.body = content.substr(given.begin, given.end - given.begin);
  if (range) {
    headers += "Content-Range: bytes " + std::to_string(given.begin) + "-" +
               std::to_string(given.end - 1) + "/" +
               (noTotal ? "*" : std::to_string(content.size())) + "\r\n";
  }
  std::size_t announced = reply.body.size();
  switch (fault.kind) {
    case Fault::Kind::kResetAfter:
    case Fault::Kind::kCloseAfter:
      reply.body.resize(std::min<std::size_t>(reply.body.size(), fault.bytes));
      reply.keep = false;
      break;
    case Fault::Kind::kEmptyRange:
      reply.body.clear();
      announced = 0;
      break;
    case Fault::Kind::kLongerLength:
      announced += fault.bytes;
      reply.keep = false;
      break;
    case Fault::Kind::kNoLength:
      reply.body.resize(reply.body.size() - fault.bytes);
      reply.keep = false;
      break;
    case Fault::Kind::kExtraBytes:
      reply.body.append(fault.bytes, 'x');
      reply.keep = false;
      break;
    case Fault::Kind::kMoreThanLength:
      reply.body.append(fault.bytes, 'x');
      break;
    case Fault::Kind::kNoLastChunk: {
      reply.body.resize(reply.body.size() - fault.bytes);
      std::ostringstream chunk;
      chunk << std::hex << reply.body.size() << "\r\n" << reply.body << "\r\n";
      reply.body = chunk.str();
      reply.keep = false;
      break;
    }
    case Fault::Kind::kCorrupt:
      reply.body.at(fault.bytes) ^= 1;
      break;
    default:
      break;
  }
  const bool hasLength =
      fault.kind != Fault::Kind::kNoLength && fault.kind != Fault::Kind::kExtraBytes;
  if (fault.kind == Fault::Kind::kNoLastChunk) {
    headers += "Transfer-Encoding: chunked\r\n";
  } else if (hasLength) {
    headers += "Content-Length: " + std::to_string(announced) + "\r\n";
  } else {
    headers += "Connection: close\r\n";
  }
  reply.head =
      std::string("HTTP/1.1 ") + (range ? "206" : "200") + " Status\r\n" + headers + "\r\n";
  return reply;
}

}  // namespace zt_transfers::test
