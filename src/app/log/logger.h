#pragma once

#include <Poco/AutoPtr.h>
#include <Poco/FileChannel.h>
#include <Poco/LogStream.h>
#include <Poco/Message.h>
#include <Poco/Mutex.h>

#include <sstream>
#include <string>

namespace zantrio {

// The application log: one named logger that writes to a rotating file. One per process, created on
// first use and kept until the process ends. Thread: any; each line is written whole.
class CLogHolder {
 public:
  // Null when memory runs out.
  static CLogHolder* get();

  CLogHolder();
  CLogHolder(const CLogHolder&) = delete;
  CLogHolder& operator=(const CLogHolder&) = delete;

  // Call it before the first line is written. An empty path is ignored.
  void setLogPath(const std::string& path);

  // Writes the pieces, concatenated, as one line (see shown_text::oneLine). A line that cannot be
  // written is lost.
  template <class... Pieces>
  void write(Poco::Message::Priority priority, const Pieces&... pieces) {
    std::ostringstream line;
    ((line << pieces), ...);
    writeLine(priority, line.str());
  }

 private:
  void writeLine(Poco::Message::Priority priority, const std::string& text);

  Poco::FastMutex mutex_;
  // Guarded by mutex_.
  Poco::AutoPtr<Poco::FileChannel> file_;
  Poco::LogStream stream_;
};

template <class... Pieces>
void writeLog(Poco::Message::Priority priority, const Pieces&... pieces) {
  if (CLogHolder* log = CLogHolder::get()) {
    log->write(priority, pieces...);
  }
}

// Progress and state.
template <class... Pieces>
void logInformation(const Pieces&... pieces) {
  writeLog(Poco::Message::PRIO_INFORMATION, pieces...);
}

// Time-outs and unexpected recoveries.
template <class... Pieces>
void logWarning(const Pieces&... pieces) {
  writeLog(Poco::Message::PRIO_WARNING, pieces...);
}

template <class... Pieces>
void logError(const Pieces&... pieces) {
  writeLog(Poco::Message::PRIO_ERROR, pieces...);
}

}  // namespace zantrio
