#pragma once

#include <memory>

namespace zantrio {

// The platform's preparation of the browser process: main creates it first, while the process has
// one thread and no open files, and destroys it last. Failures go to the system's log; the process
// continues. Implemented by each platform that needs it.
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
