#include "devservice/body_writer.h"

#include <Poco/Net/HTTPServerSession.h>

#include <algorithm>
#include <vector>

namespace zantrio::devservice {

namespace {

constexpr std::size_t kPiece = 256UL * 1024;
constexpr std::uint64_t kStepsPerSecond = 20;
constexpr std::uint64_t kForever = 24ULL * 3600 * 1000;

class CPartSender {
 public:
  CPartSender(CExchange& exchange, const IContent& content, const ByteRange& part)
      : exchange_(exchange),
        content_(content),
        first_(part.first),
        size_(part.last - part.first + 1) {}

  void run() {
    std::vector<char> buffer(kPiece);
    while (done_ < size_) {
      const std::size_t wanted = allowance(std::min<std::uint64_t>(buffer.size(), size_ - done_));
      if (wanted == 0) {
        return;
      }
      const std::size_t count = content_.readAt(std::span(buffer).first(wanted), first_ + done_);
      if (count == 0) {
        throw CConnectionLost("the content became shorter");
      }
      corrupt(std::span(buffer).first(count));
      send(std::span(buffer).first(count));
      done_ += count;
    }
  }

 private:
  // The number of bytes that may be sent before the fault; applies the fault when it is due.
  // 0: the body ends here.
  std::size_t allowance(std::uint64_t wanted) {
    Fault& fault = exchange_.fault;
    if (fault.type == Fault::Type::kRate) {
      const std::uint64_t step = std::max<std::uint64_t>(1, fault.bytesPerSecond / kStepsPerSecond);
      return std::min(wanted, step);
    }
    if (fault.type != Fault::Type::kReset && fault.type != Fault::Type::kStall &&
        fault.type != Fault::Type::kTruncate) {
      return wanted;
    }
    if (fault.afterBytes > done_) {
      return std::min(wanted, fault.afterBytes - done_);
    }
    if (fault.type == Fault::Type::kReset) {
      exchange_.reset();
    }
    if (fault.type == Fault::Type::kTruncate) {
      exchange_.response.setKeepAlive(false);
      return 0;
    }
    fault.type = Fault::Type::kNone;
    exchange_.wait(fault.milliseconds > 0 ? fault.milliseconds : kForever);
    return wanted;
  }

  void corrupt(std::span<char> piece) const {
    const Fault& fault = exchange_.fault;
    if (fault.type == Fault::Type::kCorrupt && fault.afterBytes >= done_ &&
        fault.afterBytes < done_ + piece.size()) {
      piece[fault.afterBytes - done_] ^= 1;
    }
  }

  void send(std::span<const char> data) {
    auto& socket = exchange_.request.session().socket();
    while (!data.empty()) {
      const int sent = socket.sendBytes(data.data(), static_cast<int>(data.size()));
      if (sent <= 0) {
        throw CConnectionLost("the client is gone");
      }
      data = data.subspan(static_cast<std::size_t>(sent));
      if (exchange_.fault.type == Fault::Type::kRate) {
        exchange_.wait(static_cast<std::uint64_t>(sent) * 1000 / exchange_.fault.bytesPerSecond);
      }
    }
  }

  CExchange& exchange_;
  const IContent& content_;
  const std::uint64_t first_;
  const std::uint64_t size_;
  std::uint64_t done_ = 0;
};

}  // namespace

void sendPart(CExchange& exchange, const IContent& content, const ByteRange& part) {
  exchange.response.send().flush();
  CPartSender(exchange, content, part).run();
}

}  // namespace zantrio::devservice
