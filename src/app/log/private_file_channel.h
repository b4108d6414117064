#pragma once

#include <Poco/FileChannel.h>

#include <cstdint>

namespace zantrio {

// A rotating log file that only its owner may read, whatever the mask of new files is and whoever
// made it. Thread: as FileChannel.
class CPrivateFileChannel : public Poco::FileChannel {
 public:
  void log(const Poco::Message& message) override;

 private:
  std::uint64_t size_ = 0;  // bytes, after the last message
};

}  // namespace zantrio
