#include "src/fakes/log_capture.h"

#include <Poco/Logger.h>
#include <Poco/Message.h>

#include <algorithm>
#include <mutex>

#include "app/logger.h"

namespace zantrio::test {
namespace {

std::string priorityName(const Poco::Message& message) {
  switch (message.getPriority()) {
    case Poco::Message::PRIO_INFORMATION:
      return "information";
    case Poco::Message::PRIO_WARNING:
      return "warning";
    case Poco::Message::PRIO_ERROR:
      return "error";
    default:
      return "other";
  }
}

Poco::Logger& applicationLogger() {
  return Poco::Logger::get("ZantrioLogger");
}

}  // namespace

class LogCapture::Recorder : public Poco::Channel {
 public:
  void log(const Poco::Message& message) override {
    const std::lock_guard lock(mutex_);
    lines_.push_back(priorityName(message) + " " + message.getText());
  }

  std::vector<std::string> lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

LogCapture::LogCapture() : recorder_(new Recorder) {
  CLogHolder::get();
  replaced_ = Poco::AutoPtr<Poco::Channel>(applicationLogger().getChannel());
  applicationLogger().setChannel(recorder_);
}

LogCapture::~LogCapture() {
  applicationLogger().setChannel(replaced_);
}

std::vector<std::string> LogCapture::lines() const {
  return recorder_->lines();
}

bool LogCapture::contains(const std::string& line) const {
  const std::vector<std::string> all = lines();
  return std::find(all.begin(), all.end(), line) != all.end();
}

}  // namespace zantrio::test
