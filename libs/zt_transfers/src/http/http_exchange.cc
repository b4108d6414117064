#include "http/http_exchange.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "base/ascii.h"
#include "base/url_parts.h"

namespace zt_transfers {
namespace {

// Bytes of the largest body for which HTTP/2 is used.
constexpr std::uint64_t kMaxShared = 4ULL * 1024 * 1024;

// libcurl sends no larger body together with the head.
constexpr std::uint64_t kMaxWithHead = 64ULL * 1024 - 1;

constexpr long kLargeUploadBuffer = 64L * 1024;
constexpr std::uint64_t kLargeReceiveBuffer = 128ULL * 1024;
constexpr std::uint64_t kSmallReceiveBuffer = 32ULL * 1024;

// libcurl allocates a buffer of this size for each response, and a small one is cheaper.
long receiveBufferFor(std::uint64_t responseSize) {
  const std::uint64_t wanted = responseSize == 0 ? kLargeReceiveBuffer : responseSize;
  return static_cast<long>(std::clamp(wanted, kSmallReceiveBuffer, kLargeReceiveBuffer));
}

// From this size on, the server is asked first whether it wants the body: one that refuses in the
// middle closes the connection, and its response can get lost.
constexpr std::uint64_t kAskFirstFrom = 8ULL * 1024 * 1024;
constexpr long kAskFirstLimit = 500;  // milliseconds, for servers that ignore the question

// Bytes. More means that the response has no end.
constexpr std::uint64_t kMaxResponseToContent = 1024ULL * 1024;

int statusOf(std::string_view statusLine) {
  const std::string_view rest =
      statusLine.substr(std::min(statusLine.find(' '), statusLine.size()));
  return std::atoi(std::string(rest).c_str());
}

// libcurl sets these headers; other values would contradict the request that it sends.
bool belongsToTransport(std::string_view name) {
  constexpr std::array<std::string_view, 4> kNames{"content-length", "transfer-encoding", "expect",
                                                   "connection"};
  return std::any_of(kNames.begin(), kNames.end(),
                     [name](std::string_view known) { return equalsIgnoringCase(name, known); });
}

bool isHeaderName(std::string_view name) {
  constexpr std::string_view kTokenMarks = "!#$%&'*+-.^_`|~";
  return !name.empty() && std::all_of(name.begin(), name.end(), [&](char character) {
    const char lower = lowerAscii(character);
    return (lower >= 'a' && lower <= 'z') || (lower >= '0' && lower <= '9') ||
           kTokenMarks.find(character) != std::string_view::npos;
  });
}

bool isHeaderValue(std::string_view value) {
  return std::none_of(value.begin(), value.end(), [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return (byte < 0x20 && byte != '\t') || byte == 0x7F;
  });
}

}  // namespace

CHttpExchange::CHttpExchange(CHttpLoop& loop, const HttpRequest& request, IHttpBody* body,
                             IHttpSink* sink, Done done)
    : loop_(loop),
      patience_(request.patience),
      bodySize_(request.bodySize),
      body_(body),
      sink_(sink),
      done_(std::move(done)),
      liveness_(patience_, loop.clock().now()) {
  loop_.assertOnLoop();
  setUpHeaders(request);
  easy_ = loop_.takeEasy();
  setUp(request);
  loop_.add(*this);
}

CHttpExchange::~CHttpExchange() {
  loop_.assertOnLoop();
  loop_.remove(*this);
  loop_.giveBack(std::move(easy_));
}

void CHttpExchange::setUpHeaders(const HttpRequest& request) {
  for (const auto& [name, value] : request.headers) {
    if (!isHeaderName(name) || !isHeaderValue(value)) {
      throw std::invalid_argument("a header of the request is malformed");
    }
    if (belongsToTransport(name)) {
      continue;
    }
    // libcurl's form of a header without a value ends in a semicolon.
    const std::string_view text = trimmed(value);
    append(headers_, (text.empty() ? name + ";" : name + ": " + std::string(text)).c_str());
  }
  if (body_ != nullptr && request.bodySize < kAskFirstFrom) {
    append(headers_, "Expect:");
  }
}

// Whether HTTP/2 serves the request best. It does for small bodies, which share a connection. A
// large body has a congestion window of its own over HTTP/1.1, and a limit holds there: over HTTP/2
// libcurl takes up to 32 MiB into memory for each response that is held back.
bool CHttpExchange::mayShareConnection(const HttpRequest& request) const {
  const bool unknown = body_ == nullptr && request.responseSize == 0;
  return !unknown && std::max(request.bodySize, request.responseSize) <= kMaxShared &&
         !loop_.throttle().limited();
}

void CHttpExchange::setUp(const HttpRequest& request) {
  CURL* easy = easy_.get();
  const auto set = [easy](CURLoption option, auto value) {
    if (curl_easy_setopt(easy, option, value) == CURLE_OUT_OF_MEMORY) {
      throw std::bad_alloc();
    }
  };
  set(CURLOPT_URL, request.url.c_str());
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_CUSTOMREQUEST, request.method.c_str());
  set(CURLOPT_NOBODY, request.method == "HEAD" ? 1L : 0L);
  set(CURLOPT_HTTPHEADER, headers_.get());
  const bool multiplexed = mayShareConnection(request);
  set(CURLOPT_FRESH_CONNECT, request.freshConnection ? 1L : 0L);
  set(CURLOPT_HTTP_VERSION,
      static_cast<long>(multiplexed ? CURL_HTTP_VERSION_2TLS : CURL_HTTP_VERSION_1_1));
  if (multiplexed && startsWithIgnoringCase(request.url, "https:")) {
    // A server with HTTP/2 gets one connection; the first response shows whether it has HTTP/2.
    set(CURLOPT_PIPEWAIT, 1L);
  }
  set(CURLOPT_FOLLOWLOCATION, 0L);
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_NOPROGRESS, 1L);
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(patience_.connect.count()));
  set(CURLOPT_ERRORBUFFER, &errorText_[0]);
  set(CURLOPT_HEADERFUNCTION, &CHttpExchange::takeHeader);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_WRITEFUNCTION, &CHttpExchange::takeBody);
  set(CURLOPT_WRITEDATA, this);
  if (!loop_.userAgent().empty()) {
    set(CURLOPT_USERAGENT, loop_.userAgent().c_str());
  }
  if (!request.proxy.empty()) {
    set(CURLOPT_PROXY, request.proxy.c_str());
  }
  if (body_ != nullptr) {
    setUpBody(request);
  } else {
    set(CURLOPT_BUFFERSIZE, receiveBufferFor(request.responseSize));
  }
}

void CHttpExchange::setUpBody(const HttpRequest& request) {
  if (request.bodySize <= kMaxWithHead) {
    if (const std::string_view content = body_->takeAll(); !content.empty()) {
      setUpSmallBody(request, content);
      return;
    }
  }
  CURL* easy = easy_.get();
  curl_easy_setopt(easy, CURLOPT_UPLOAD, 1L);
  curl_easy_setopt(easy, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(request.bodySize));
  curl_easy_setopt(easy, CURLOPT_EXPECT_100_TIMEOUT_MS, kAskFirstLimit);
  curl_easy_setopt(easy, CURLOPT_READFUNCTION, &CHttpExchange::readBody);
  curl_easy_setopt(easy, CURLOPT_READDATA, this);
  curl_easy_setopt(easy, CURLOPT_SEEKFUNCTION, &CHttpExchange::seekBody);
  curl_easy_setopt(easy, CURLOPT_SEEKDATA, this);
  if (request.bodySize > static_cast<std::uint64_t>(kLargeUploadBuffer)) {
    curl_easy_setopt(easy, CURLOPT_UPLOAD_BUFFERSIZE, kLargeUploadBuffer);
  }
}

// Sent as the fields of a form, except for the method and the type.
void CHttpExchange::setUpSmallBody(const HttpRequest& request, std::string_view content) {
  const bool typed = std::any_of(
      request.headers.begin(), request.headers.end(),
      [](const auto& header) { return equalsIgnoringCase(header.first, "content-type"); });
  if (!typed) {
    append(headers_, "Content-Type:");
    curl_easy_setopt(easy_.get(), CURLOPT_HTTPHEADER, headers_.get());
  }
  curl_easy_setopt(easy_.get(), CURLOPT_POSTFIELDSIZE_LARGE,
                   static_cast<curl_off_t>(content.size()));
  curl_easy_setopt(easy_.get(), CURLOPT_POSTFIELDS, content.data());
}

void CHttpExchange::resumeBody() {
  loop_.assertOnLoop();
  if (bodyPaused_) {
    bodyPaused_ = false;
    curl_easy_pause(easy_.get(), CURLPAUSE_CONT);
  }
}

void CHttpExchange::finish(CURLcode code) {
  response_.code = bodyCut_ ? CURLE_OK : code;
  response_.error = withoutSecrets(errorText_[0] != '\0' ? errorText_ : curl_easy_strerror(code));
  curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &response_.status);
  curl_easy_getinfo(easy_.get(), CURLINFO_HTTP_CONNECTCODE, &response_.proxyStatus);
  curl_easy_getinfo(easy_.get(), CURLINFO_HTTP_VERSION, &response_.version);
  response_.staleConnection = isStale(code);
  curl_off_t sent = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_SIZE_UPLOAD_T, &sent);
  response_.bytesSent = static_cast<std::uint64_t>(sent);
  // The loop does not check an ended exchange for stalls, however long its owner keeps it.
  loop_.remove(*this);
  done_(std::move(response_));
}

bool CHttpExchange::isStale(CURLcode code) const {
  constexpr std::array kLost{CURLE_SEND_ERROR,       CURLE_RECV_ERROR, CURLE_GOT_NOTHING,
                             CURLE_SEND_FAIL_REWIND, CURLE_HTTP2,      CURLE_HTTP2_STREAM};
  long opened = 1;
  curl_easy_getinfo(easy_.get(), CURLINFO_NUM_CONNECTS, &opened);
  // libcurl itself tries a new connection, for which the body cannot always be rewound.
  const bool kept = opened == 0 || code == CURLE_SEND_FAIL_REWIND;
  return kept && !responseBegun_ && !response_.stalled &&
         std::find(kLost.begin(), kLost.end(), code) != kLost.end();
}

bool CHttpExchange::isConnected() const {
  curl_off_t connected = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_PRETRANSFER_TIME_T, &connected);
  return connected > 0;
}

bool CHttpExchange::check(std::uint64_t unconfirmed, TimePoint now) {
  curl_off_t sent = 0;
  curl_off_t received = 0;
  long head = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_SIZE_UPLOAD_T, &sent);
  curl_easy_getinfo(easy_.get(), CURLINFO_SIZE_DOWNLOAD_T, &received);
  curl_easy_getinfo(easy_.get(), CURLINFO_HEADER_SIZE, &head);
  ExchangeState state;
  state.connected = isConnected();
  state.given = static_cast<std::uint64_t>(sent);
  state.unconfirmed = unconfirmed;
  state.requestGiven = body_ == nullptr || state.given >= bodySize_;
  state.responseBegun = responseBegun_;
  state.received = static_cast<std::uint64_t>(received + head);
  state.held = std::exchange(heldSinceCheck_, bodyPaused_) || bodyPaused_;
  const CLiveness::Finding finding = liveness_.look(state, now);
  response_.stalled = finding == CLiveness::Finding::kStalled;
  return finding == CLiveness::Finding::kAlive;
}

void CHttpExchange::takeHeaderLine(std::string_view line) {
  if (startsWithIgnoringCase(line, "HTTP/")) {
    response_.headers.clear();  // of an interim response
    // A proxy answers before the connection is complete.
    responseBegun_ = isConnected() && statusOf(line) >= 200;
    return;
  }
  const auto colon = line.find(':');
  if (colon != std::string_view::npos) {
    response_.headers[loweredAscii(trimmed(line.substr(0, colon)))] =
        std::string(trimmed(line.substr(colon + 1)));
  }
}

std::size_t CHttpExchange::readBody(char* to, std::size_t size, std::size_t count, void* self) {
  auto& exchange = *static_cast<CHttpExchange*>(self);
  std::size_t copied = 0;
  switch (exchange.body_->read(to, size * count, copied)) {
    case IHttpBody::Read::kData:
      return copied;
    case IHttpBody::Read::kLater:
      exchange.bodyPaused_ = exchange.heldSinceCheck_ = true;
      return CURL_READFUNC_PAUSE;
    default:
      return CURL_READFUNC_ABORT;
  }
}

int CHttpExchange::seekBody(void* self, curl_off_t offset, int origin) {
  auto& exchange = *static_cast<CHttpExchange*>(self);
  const bool toBegin = offset == 0 && origin == SEEK_SET;
  return toBegin && exchange.body_->rewind() ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_FAIL;
}

std::size_t CHttpExchange::takeHeader(char* data, std::size_t size, std::size_t count, void* self) {
  static_cast<CHttpExchange*>(self)->takeHeaderLine({data, size * count});
  return size * count;
}

std::size_t CHttpExchange::takeBody(char* data, std::size_t size, std::size_t count, void* self) {
  auto& exchange = *static_cast<CHttpExchange*>(self);
  return exchange.sink_ != nullptr ? exchange.takeContent(data, size * count)
                                   : exchange.takeIntoResponse(data, size * count);
}

std::size_t CHttpExchange::takeContent(const char* data, std::size_t size) {
  if (response_.status == 0) {
    curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &response_.status);
    curl_easy_getinfo(easy_.get(), CURLINFO_HTTP_VERSION, &response_.version);
  }
  switch (sink_->write(response_, data, size)) {
    case IHttpSink::Write::kTaken:
      return size;
    case IHttpSink::Write::kLater:
      bodyPaused_ = heldSinceCheck_ = true;
      return CURL_WRITEFUNC_PAUSE;
    case IHttpSink::Write::kToResponse:
      sink_ = nullptr;
      return takeIntoResponse(data, size);
    default:
      return 0;
  }
}

std::size_t CHttpExchange::takeIntoResponse(const char* data, std::size_t size) {
  std::string& body = response_.body;
  const std::size_t room =
      HttpResponse::kBodyLimit - std::min(HttpResponse::kBodyLimit, body.size());
  body.append(data, std::min(room, size));
  responseSize_ += size;
  // Nobody reads a long page that only explains a refusal.
  const std::uint64_t limit = body_ == nullptr ? HttpResponse::kBodyLimit : kMaxResponseToContent;
  if (responseSize_ <= limit) {
    return size;
  }
  long status = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
  bodyCut_ = body_ == nullptr || status / 100 != 2;
  return 0;
}

}  // namespace zt_transfers
