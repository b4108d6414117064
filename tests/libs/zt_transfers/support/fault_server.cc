#include "fault_server.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <sstream>

#include "base/ascii.h"
#include "loopback.h"
#include "object_reply.h"
#include "sandbox.h"

namespace zt_transfers::test {
namespace {

constexpr std::chrono::seconds kLongWait{60};

std::string pathOf(const std::string& target) {
  return target.substr(0, target.find('?'));
}

}  // namespace

// One connection and the thread that serves it.
class CFaultServer::CConnection {
 public:
  CConnection(CFaultServer& server, CUniqueFd socket, int number)
      : server_(server), socket_(std::move(socket)), number_(number) {
    thread_ = std::thread([this] { serve(); });
  }
  ~CConnection() {
    ::shutdown(socket_.get(), SHUT_RDWR);
    thread_.join();
  }

 private:
  void serve() {
    while (auto request = readHead()) {
      server_.begin(*request);
      const bool reschedule = response(*request);
      --server_.open_;
      if (!reschedule) {
        break;
      }
    }
    ::shutdown(socket_.get(), SHUT_RDWR);
  }

  bool fill() {
    char buffer[64 * 1024];
    const ssize_t got = ::recv(socket_.get(), buffer, sizeof buffer, 0);
    if (got <= 0) {
      return false;
    }
    input_.append(buffer, static_cast<std::size_t>(got));
    return true;
  }

  std::optional<Request> readHead() {
    std::size_t end = std::string::npos;
    while ((end = input_.find("\r\n\r\n")) == std::string::npos) {
      if (!fill()) {
        return std::nullopt;
      }
    }
    std::istringstream head(input_.substr(0, end));
    input_.erase(0, end + 4);
    Request request;
    request.connection = number_;
    head >> request.method >> request.target;
    std::string line;
    std::getline(head, line);
    while (std::getline(head, line)) {
      const auto colon = line.find(':');
      request.headers[loweredAscii(line.substr(0, colon))] =
          std::string(trimmed(line.substr(colon + 1)));
    }
    const auto length = request.headers.find("content-length");
    request.bodySize = length == request.headers.end() ? 0 : std::stoull(length->second);
    return request;
  }

  bool response(const Request& request) {
    const std::string path = pathOf(request.target);
    const Fault fault = server_.faultFor(path);
    if (request.method == "GET") {
      return give(request, path, fault);
    }
    switch (fault.kind) {
      case Fault::Kind::kEarlyStatus:
        send(fault.status, {{"Connection", "close"}}, "");
        return false;
      case Fault::Kind::kStall:
        server_.waitForRelease();
        return false;
      case Fault::Kind::kResetAfter:
        readBody(request, std::min(fault.bytes, request.bodySize), 0);
        reset();
        return false;
      default:
        break;
    }
    if (request.headers.count("expect") != 0) {
      sendText("HTTP/1.1 100 Continue\r\n\r\n");
    }
    const bool slow = fault.kind == Fault::Kind::kSlow;
    const auto body = readBody(request, request.bodySize, slow ? fault.bytes : 0);
    if (!body || fault.kind == Fault::Kind::kCloseWithoutResponse) {
      return false;
    }
    if (fault.kind == Fault::Kind::kStatus) {
      return send(fault.status, fault.headers, fault.body);
    }
    if (fault.kind == Fault::Kind::kEndlessResponse) {
      return sendText("HTTP/1.1 200 Status\r\nContent-Length: 100000\r\n\r\n") &&
             sendSlowly(path, std::string(100'000, ' '), 1, 20);
    }
    if (fault.kind == Fault::Kind::kHold && !server_.waitForRelease()) {
      return false;
    }
    return store(path, *body, fault);
  }

  bool give(const Request& request, const std::string& path, const Fault& fault) {
    switch (fault.kind) {
      case Fault::Kind::kStall:
        server_.waitForRelease();
        return false;
      case Fault::Kind::kHold:
        server_.waitForRelease();
        break;
      case Fault::Kind::kCloseWithoutResponse:
        return false;
      case Fault::Kind::kStatus:
        return send(fault.status, fault.headers, fault.body);
      default:
        break;
    }
    const auto content = server_.object(path);
    if (!content) {
      return send(404, {}, "<?xml version=\"1.0\"?>\n<Error><Code>NoSuchKey</Code></Error>");
    }
    const ObjectReply reply = replyTo(request, *content, fault);
    if (!sendText(reply.head) ||
        !sendBody(path, reply.body, fault.kind == Fault::Kind::kSlow ? fault.bytes : 0)) {
      return false;
    }
    if (fault.kind == Fault::Kind::kResetAfter) {
      reset();
    }
    return reply.keep;
  }

  bool sendBody(const std::string& path, const std::string& body, std::uint64_t bytesPerSecond) {
    // Slow bodies go in small pieces.
    return sendSlowly(path, body, bytesPerSecond != 0 ? 16 * 1024 : 256 * 1024, bytesPerSecond);
  }

  bool sendSlowly(const std::string& path, const std::string& body, std::size_t piece,
                  std::uint64_t bytesPerSecond) {
    const auto begin = std::chrono::steady_clock::now();
    for (std::size_t sent = 0; sent < body.size();) {
      const std::string part = body.substr(sent, piece);
      if (!sendText(part)) {
        return false;
      }
      sent += part.size();
      server_.bodyBytes_ += part.size();
      server_.watched(path, sent);
      if (bytesPerSecond != 0 && !paced(begin, sent, bytesPerSecond)) {
        return false;
      }
    }
    return true;
  }

  bool store(const std::string& path, const std::string& body, const Fault& fault) {
    auto headers = fault.headers;
    if (fault.kind != Fault::Kind::kNoETag) {
      const bool given = fault.kind == Fault::Kind::kETag;
      headers.emplace_back("ETag", given ? fault.body : "\"" + md5Of(body) + "\"");
    }
    {
      const std::lock_guard lock(server_.mutex_);
      server_.objects_[path] = body;
    }
    return send(200, headers, "");
  }

  std::optional<std::string> readBody(const Request& request, std::uint64_t size,
                                      std::uint64_t bytesPerSecond) {
    const auto begin = std::chrono::steady_clock::now();
    const std::string path = pathOf(request.target);
    std::string body;
    for (;;) {
      const std::size_t taken = std::min<std::size_t>(input_.size(), size - body.size());
      body.append(input_, 0, taken);
      input_.erase(0, taken);
      server_.bodyBytes_ += taken;
      server_.watched(path, body.size());
      if (bytesPerSecond != 0 && !paced(begin, body.size(), bytesPerSecond)) {
        return std::nullopt;
      }
      if (body.size() == size) {
        return body;
      }
      if (!fill()) {
        return std::nullopt;
      }
    }
  }

  // Waits until `bytes` are due; false when the server stops.
  bool paced(std::chrono::steady_clock::time_point begin, std::size_t bytes,
             std::uint64_t bytesPerSecond) {
    const std::chrono::duration<double> due(double(bytes) / double(bytesPerSecond));
    std::unique_lock lock(server_.mutex_);
    const auto until = begin + std::chrono::duration_cast<std::chrono::steady_clock::duration>(due);
    return !server_.changed_.wait_until(lock, until, [this] { return server_.stopping_.load(); });
  }

  bool send(int status, const std::vector<std::pair<std::string, std::string>>& headers,
            const std::string& body) {
    std::string text = "HTTP/1.1 " + std::to_string(status) + " Status\r\n";
    for (const auto& [name, value] : headers) {
      text += name + ": " + value + "\r\n";
    }
    text += "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    return sendText(text);
  }

  bool sendText(const std::string& text) {
    return ::send(socket_.get(), text.data(), text.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(text.size());
  }

  void reset() {
    const linger hard{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
    // Closing is what sends the reset; the descriptor itself stays valid for the destructor.
    CUniqueFd closed(::dup(::fileno(stderr)));
    ::dup2(closed.get(), socket_.get());
  }

  CFaultServer& server_;
  CUniqueFd socket_;
  const int number_;
  std::string input_;
  std::thread thread_;
};

CFaultServer::CFaultServer(int port) : port_(port) {
  listener_ = listenOnLoopback(port_);
  acceptor_ = std::thread([this] { accept(); });
}

CFaultServer::~CFaultServer() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  changed_.notify_all();
  ::shutdown(listener_.get(), SHUT_RDWR);
  acceptor_.join();
  std::list<CConnection> connections;
  {
    const std::lock_guard lock(mutex_);
    connections.swap(connections_);
  }
}

std::string CFaultServer::url(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(port_) + path;
}

void CFaultServer::plan(const std::string& path, std::vector<Fault> faults) {
  const std::lock_guard lock(mutex_);
  plans_[path] = std::deque<Fault>(faults.begin(), faults.end());
}

void CFaultServer::planForAll(const Fault& fault) {
  const std::lock_guard lock(mutex_);
  planForAll_ = fault;
}

void CFaultServer::release() {
  {
    const std::lock_guard lock(mutex_);
    released_ = true;
  }
  changed_.notify_all();
}

void CFaultServer::watchBody(std::function<void(const std::string&, std::uint64_t)> watcher) {
  const std::lock_guard lock(mutex_);
  watcher_ = std::move(watcher);
}

void CFaultServer::watched(const std::string& path, std::uint64_t bytes) {
  std::function<void(const std::string&, std::uint64_t)> watcher;
  {
    const std::lock_guard lock(mutex_);
    watcher = watcher_;
  }
  if (watcher) {
    watcher(path, bytes);
  }
}

void CFaultServer::put(const std::string& path, const std::string& content) {
  const std::lock_guard lock(mutex_);
  objects_[path] = content;
}

std::optional<std::string> CFaultServer::object(const std::string& path) const {
  const std::lock_guard lock(mutex_);
  const auto found = objects_.find(path);
  return found == objects_.end() ? std::nullopt : std::optional(found->second);
}

std::size_t CFaultServer::objectCount() const {
  const std::lock_guard lock(mutex_);
  return objects_.size();
}

std::vector<CFaultServer::Request> CFaultServer::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

std::vector<CFaultServer::Request> CFaultServer::requestsTo(const std::string& path) const {
  std::vector<Request> chosen;
  for (const Request& request : requests()) {
    if (pathOf(request.target) == path) {
      chosen.push_back(request);
    }
  }
  return chosen;
}

bool CFaultServer::waitForRequests(std::size_t count) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, kLongWait, [&] { return requests_.size() >= count; });
}

void CFaultServer::accept() {
  for (int number = 1;; ++number) {
    CUniqueFd socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!socket.valid()) {
      return;
    }
    const int on = 1;
    ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    const std::lock_guard lock(mutex_);
    connections_.emplace_back(*this, std::move(socket), number);
  }
}

Fault CFaultServer::faultFor(const std::string& path) {
  const std::lock_guard lock(mutex_);
  const auto plan = plans_.find(path);
  if (plan == plans_.end()) {
    return planForAll_;
  }
  if (plan->second.empty()) {
    return {};
  }
  const Fault fault = plan->second.front();
  plan->second.pop_front();
  return fault;
}

void CFaultServer::begin(const Request& request) {
  const int open = ++open_;
  {
    const std::lock_guard lock(mutex_);
    maxOpen_ = std::max(maxOpen_.load(), open);
    requests_.push_back(request);
  }
  changed_.notify_all();
}

// False when the server stops instead.
bool CFaultServer::waitForRelease() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return released_ || stopping_; });
  return !stopping_;
}

}  // namespace zt_transfers::test
