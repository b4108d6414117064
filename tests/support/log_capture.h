#pragma once

#include <Poco/AutoPtr.h>
#include <Poco/Channel.h>

#include <string>
#include <vector>

namespace zantrio::test {

// Captures the application log's lines while it lives, as "information text", "error text", …
class LogCapture {
 public:
  LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  ~LogCapture();

  std::vector<std::string> lines() const;
  bool contains(const std::string& line) const;

 private:
  class Recorder;

  Poco::AutoPtr<Recorder> recorder_;
  Poco::AutoPtr<Poco::Channel> replaced_;
};

}  // namespace zantrio::test
