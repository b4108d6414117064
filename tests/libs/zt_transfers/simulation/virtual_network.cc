#include "simulation/virtual_network.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zt_transfers::test {
namespace {

constexpr std::size_t kPiece = 16 * 1024;
constexpr std::chrono::milliseconds kLatency{100};

class CVirtualExchange final : public IHttpExchange {
 public:
  CVirtualExchange(CVirtualNetwork& network, const HttpRequest& request, IHttpBody* body,
                   IHttpSink* sink, IHttpTransport::Done done)
      : network_(network),
        request_(request),
        body_(body),
        sink_(sink),
        done_(std::move(done)),
        sent_{
            .method = request.method, .url = request.url, .headers = request.headers, .body = ""} {
    next(network_.world().randomDelay(kLatency), &CVirtualExchange::connect);
  }

  void resumeBody() override {
    if (auto paused = std::exchange(paused_, nullptr)) {
      next(Duration::zero(), paused);
    }
  }

 private:
  using Step = void (CVirtualExchange::*)();

  void next(Duration delay, Step step) {
    network_.after(delay, [this, step, alive = std::weak_ptr(alive_)] {
      if (!alive.expired()) {
        (this->*step)();
      }
    });
  }
  Duration timeFor(std::size_t bytes) const {
    return std::chrono::microseconds(std::uint64_t{bytes} * 1'000'000 /
                                     std::max<std::uint64_t>(reply_.bytesPerSecond, 1));
  }

  void connect() {
    reply_ = network_.servers().onConnect(request_.url);
    if (reply_.failure != CURLE_OK) {
      finish(reply_.failure);
      return;
    }
    if (body_ == nullptr || request_.bodySize == 0) {
      ask();
      return;
    }
    if (request_.bodySize <= kPiece) {
      sent_.body = std::string(body_->takeAll());
    }
    if (sent_.body.empty()) {
      sendPiece();
    } else {
      next(timeFor(sent_.body.size()), &CVirtualExchange::ask);
    }
  }

  void sendPiece() {
    std::array<char, kPiece> piece{};
    std::size_t copied = 0;
    switch (body_->read(piece.data(), piece.size(), copied)) {
      case IHttpBody::Read::kBroken:
        finish(CURLE_ABORTED_BY_CALLBACK);
        return;
      case IHttpBody::Read::kLater:
        paused_ = &CVirtualExchange::sendPiece;
        return;
      case IHttpBody::Read::kData:
        sent_.body.append(piece.data(), copied);
        next(timeFor(copied), copied == 0 ? &CVirtualExchange::ask : &CVirtualExchange::sendPiece);
        return;
    }
  }

  void ask() {
    reply_ = network_.servers().reply(sent_);
    next(network_.world().randomDelay(kLatency), &CVirtualExchange::receive);
  }

  void receive() {
    if (reply_.silent && reply_.cutAt == 0) {
      next(request_.patience.response, &CVirtualExchange::stall);
      return;
    }
    if (reply_.failure != CURLE_OK && reply_.head.status == 0) {
      finish(reply_.failure);
      return;
    }
    response_ = reply_.head;
    if (sink_ == nullptr || request_.method == "HEAD") {
      response_.body = reply_.body;
      finish(reply_.failure);
      return;
    }
    receivePiece();
  }

  void receivePiece() {
    const std::uint64_t end = std::min<std::uint64_t>(reply_.body.size(), reply_.cutAt);
    const std::size_t size = std::min<std::uint64_t>(kPiece, end - received_);
    if (size == 0) {
      finish(reply_.failure);
      return;
    }
    switch (sink_->write(response_, reply_.body.data() + received_, size)) {
      case IHttpSink::Write::kTaken:
        received_ += size;
        next(timeFor(size), &CVirtualExchange::receivePiece);
        return;
      case IHttpSink::Write::kLater:
        paused_ = &CVirtualExchange::receivePiece;
        return;
      case IHttpSink::Write::kToResponse:
        response_.body = reply_.body.substr(received_);
        finish(reply_.failure);
        return;
      case IHttpSink::Write::kBroken:
        finish(CURLE_WRITE_ERROR);
        return;
    }
  }

  void stall() {
    response_.stalled = true;
    finish(CURLE_OPERATION_TIMEDOUT);
  }

  void finish(CURLcode code) {
    response_.code = code;
    response_.error = curl_easy_strerror(code);
    response_.bytesSent = sent_.body.size();
    alive_.reset();
    done_(std::move(response_));
  }

  CVirtualNetwork& network_;
  const HttpRequest request_;
  IHttpBody* const body_;  // this or the sink is null
  IHttpSink* const sink_;
  const IHttpTransport::Done done_;
  VirtualRequest sent_;
  VirtualReply reply_;
  HttpResponse response_;
  std::uint64_t received_ = 0;
  Step paused_ = nullptr;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace

CVirtualNetwork::CVirtualNetwork(CWorld& world, CVirtualServers& servers,
                                 std::function<std::optional<TimePoint>()> tick)
    : world_(world), servers_(servers), tick_(std::move(tick)) {}

void CVirtualNetwork::post(std::function<void()> task) {
  tasks_.push_back(std::move(task));
  wake();
}

void CVirtualNetwork::wake() {
  scheduleRound(world_.now());
}

void CVirtualNetwork::scheduleRound(TimePoint when) {
  if (nextRound_ && *nextRound_ <= when) {
    return;
  }
  nextRound_ = when;
  world_.after(when - world_.now(), [this, when, alive = std::weak_ptr(alive_)] {
    if (!alive.expired() && nextRound_ == when) {
      nextRound_.reset();
      round();
    }
  });
}

void CVirtualNetwork::after(Duration delay, std::function<void()> event) {
  world_.after(delay, [this, event = std::move(event), alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) {
      event();
      wake();
    }
  });
}

void CVirtualNetwork::round() {
  for (const auto& task : std::exchange(tasks_, {})) {
    task();
  }
  const std::optional<TimePoint> due = tick_();
  throttle_.serve(world_.now());
  retired_.clear();
  for (const auto& when : {due, throttle_.nextDue(world_.now())}) {
    if (when) {
      scheduleRound(std::max(*when, world_.now()));
    }
  }
}

std::unique_ptr<IHttpExchange> CVirtualNetwork::send(const HttpRequest& request, IHttpBody& body,
                                                     Done done) {
  return std::make_unique<CVirtualExchange>(*this, request, &body, nullptr, std::move(done));
}

std::unique_ptr<IHttpExchange> CVirtualNetwork::send(const HttpRequest& request, IHttpSink& sink,
                                                     Done done) {
  return std::make_unique<CVirtualExchange>(*this, request, nullptr, &sink, std::move(done));
}

}  // namespace zt_transfers::test
