#include "support/log_capture.h"

#include <Poco/Logger.h>
#include <Poco/Message.h>

#include <algorithm>
#include <map>
#include <mutex>

#include "app/log/logger.h"

namespace zantrio::test {
namespace {

const std::map<Poco::Message::Priority, std::string> kPriorities = {
    {Poco::Message::PRIO_INFORMATION, "information "},
    {Poco::Message::PRIO_WARNING, "warning "},
    {Poco::Message::PRIO_ERROR, "error "}};

Poco::Logger& applicationLogger() {
  return Poco::Logger::get("ZantrioLogger");
}

}  // namespace

class LogCapture::Recorder : public Poco::Channel {
 public:
  void log(const Poco::Message& message) override {
    const std::lock_guard lock(mutex_);
    lines_.push_back(kPriorities.at(message.getPriority()) + message.getText());
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
