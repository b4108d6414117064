#include "devservice/background_md5.h"

namespace zantrio::devservice {

CBackgroundMd5::CBackgroundMd5(std::size_t bufferSize) {
  for (auto& buffer : buffers_) {
    buffer.resize(bufferSize);
  }
  thread_ = std::jthread([this] { run(); });
}

CBackgroundMd5::~CBackgroundMd5() {
  end();
}

std::span<char> CBackgroundMd5::nextBuffer() {
  free_.acquire();
  free_.release();  // acquired by hash(); a buffer that is never passed to it stays free
  return buffers_[handedOver_ % kBuffers];
}

void CBackgroundMd5::hash(std::span<const char> filled) {
  free_.acquire();
  filled_[handedOver_ % kBuffers] = filled;
  ++handedOver_;
  waiting_.release();
}

std::string CBackgroundMd5::finish() {
  end();
  return md5_.finish();
}

void CBackgroundMd5::run() {
  for (std::size_t next = 0;; ++next) {
    waiting_.acquire();
    if (next == handedOver_) {
      return;  // woken by end()
    }
    const std::span<const char> filled = filled_[next % kBuffers];
    md5_.update(filled.data(), filled.size());
    free_.release();
  }
}

void CBackgroundMd5::end() {
  if (thread_.joinable()) {
    waiting_.release();
    thread_.join();
  }
}

}  // namespace zantrio::devservice
