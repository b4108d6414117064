#pragma once

#include <memory>

namespace zantrio {

// What the platform does in the browser process before anything else, and undoes last: main makes
// it first, while the process has one thread and has opened nothing, and keeps it to its end.
// Implemented by each platform, which tells the system's log what fails; the process goes on.
class ProcessPreparation {
 public:
  ProcessPreparation();
  ProcessPreparation(const ProcessPreparation&) = delete;
  ProcessPreparation& operator=(const ProcessPreparation&) = delete;
  ~ProcessPreparation();

 private:
  class Impl;
  const std::unique_ptr<Impl> impl_;
};

}  // namespace zantrio
