#include "browser/stoppable_thread.h"

#include <utility>

namespace zantrio {

StoppableThread::StoppableThread(std::function<void(const StopFlag& stop)> work)
    : thread_([this, work = std::move(work)] { work(stop_); }) {}

StoppableThread::~StoppableThread() {
  requestStop();
  thread_.join();
}

}  // namespace zantrio
