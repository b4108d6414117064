#include "platform/linux/contacts/glib_thread.h"

#include <utility>

namespace zantrio {
namespace {

using Task = std::function<void()>;

// How long to wait for cancelled calls.
constexpr std::chrono::milliseconds kEndLimit(1000);

gboolean runTask(gpointer task) {
  (*static_cast<Task*>(task))();
  return G_SOURCE_REMOVE;
}

void deleteTask(gpointer task) {
  delete static_cast<Task*>(task);
}

}  // namespace

CGlibThreadLinux::CGlibThreadLinux()
    : context_(g_main_context_new()), calls_(std::make_shared<int>()), thread_([this] { run(); }) {}

CGlibThreadLinux::~CGlibThreadLinux() {
  post([this] {
    stopping_ = true;
    runLater(kEndLimit, [this] { expired_ = true; });
  });
  thread_.join();
}

void CGlibThreadLinux::post(Task task) {
  {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(task));
  }
  g_main_context_wakeup(context_.get());
}

void CGlibThreadLinux::runLater(std::chrono::milliseconds delay, Task task) {
  GSource* const source = g_timeout_source_new(static_cast<guint>(delay.count()));
  g_source_set_callback(source, runTask, new Task(std::move(task)), deleteTask);
  g_source_attach(source, context_.get());
  g_source_unref(source);
}

void CGlibThreadLinux::run() {
  g_main_context_push_thread_default(context_.get());
  while (!isFinished()) {
    g_main_context_iteration(context_.get(), TRUE);
    runPosted();
  }
  g_main_context_pop_thread_default(context_.get());
}

// Repeats until the queue is empty: a task may iterate the context itself and consume the wake-up
// of a later task.
void CGlibThreadLinux::runPosted() {
  for (std::vector<Task> tasks = takePosted(); !tasks.empty(); tasks = takePosted()) {
    for (const Task& task : tasks) {
      task();
    }
  }
}

std::vector<Task> CGlibThreadLinux::takePosted() {
  const std::lock_guard lock(mutex_);
  return std::exchange(posted_, {});
}

bool CGlibThreadLinux::isFinished() const {
  return stopping_ && (expired_ || calls_.use_count() == 1);
}

}  // namespace zantrio
