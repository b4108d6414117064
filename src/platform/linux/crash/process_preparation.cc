#include "services/process_preparation.h"

#include "platform/linux/crash/crash_reporter.h"

namespace zantrio {

// The watcher of crashes is forked here; CPlatformInitLinux puts it to work.
class ProcessPreparation::Impl {
 private:
  const CrashReporter reporter_;
};

ProcessPreparation::ProcessPreparation() : impl_(std::make_unique<Impl>()) {}

ProcessPreparation::~ProcessPreparation() = default;

}  // namespace zantrio
