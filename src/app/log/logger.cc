#include "app/log/logger.h"

#include <Poco/FormattingChannel.h>
#include <Poco/Logger.h>
#include <Poco/PatternFormatter.h>

#include <new>

#include "app/log/private_file_channel.h"
#include "shown_text/one_line.h"

namespace zantrio {
namespace {

const std::string kLoggerName = "ZantrioLogger";

Poco::FastMutex creationMutex;
// Guarded by creationMutex. Never deleted: threads may log until the process ends.
CLogHolder* holder = nullptr;

Poco::AutoPtr<Poco::FileChannel> makeFileChannel() {
  Poco::AutoPtr<Poco::FileChannel> file(new CPrivateFileChannel);
  file->setProperty("rotation", "2 M");
  file->setProperty("purgeCount", "5");
  file->setProperty("flush", "true");
  return file;
}

Poco::Logger& makeLogger(const Poco::AutoPtr<Poco::FileChannel>& file) {
  Poco::AutoPtr<Poco::PatternFormatter> formatter(new Poco::PatternFormatter);
  formatter->setProperty("pattern", "[%n-%e-%y %H:%M:%S:%i] [%I %T] [%p] %t");
  formatter->setProperty("times", "local");
  const Poco::AutoPtr<Poco::FormattingChannel> channel(
      new Poco::FormattingChannel(formatter, file));
  Poco::Logger& logger = Poco::Logger::get(kLoggerName);
  logger.setChannel(channel);
  logger.setLevel(Poco::Message::PRIO_INFORMATION);
  return logger;
}

}  // namespace

CLogHolder* CLogHolder::get() {
  const Poco::FastMutex::ScopedLock lock(creationMutex);
  if (holder == nullptr) {
    holder = new (std::nothrow) CLogHolder;
  }
  return holder;
}

CLogHolder::CLogHolder() : file_(makeFileChannel()), stream_(makeLogger(file_)) {}

void CLogHolder::setLogPath(const std::string& path) {
  if (path.empty()) {
    return;
  }
  const Poco::FastMutex::ScopedLock lock(mutex_);
  file_->close();  // an open file would go on under its old path
  file_->setProperty("path", path);
}

void CLogHolder::writeLine(Poco::Message::Priority priority, const std::string& text) {
  // The stream begins a new message at each line break, and takes the byte 0xFF for the end.
  const std::string line = shown_text::oneLine(text);
  const Poco::FastMutex::ScopedLock lock(mutex_);
  // After a line that could not be written (full disk, no path yet) the stream is in a failed
  // state; clearing it lets the next line try again.
  stream_.clear();
  stream_.priority(priority);
  stream_ << line << std::endl;
}

}  // namespace zantrio
