#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <vector>

#include "include/base/cef_bind.h"
#include "include/cef_task.h"
#include "include/wrapper/cef_closure_task.h"
#include "support/framework.h"

namespace cef_test {
namespace {

constexpr CefThreadId kThreads[] = {TID_UI,
                                    TID_FILE_BACKGROUND,
                                    TID_FILE_USER_VISIBLE,
                                    TID_FILE_USER_BLOCKING,
                                    TID_PROCESS_LAUNCHER,
                                    TID_IO};

// The values that tasks recorded, in order. Thread-safe.
class Notes : public base::RefCountedThreadSafe<Notes> {
 public:
  void note(int value) {
    const std::lock_guard lock(mutex_);
    values_.push_back(value);
  }
  std::vector<int> values() {
    const std::lock_guard lock(mutex_);
    return values_;
  }

 private:
  friend class base::RefCountedThreadSafe<Notes>;
  ~Notes() = default;

  std::mutex mutex_;
  std::vector<int> values_;
};

TEST(Tasks, RunOnTheirThreadInPostingOrderAndDelayedOnesByDueTime) {
  for (const CefThreadId thread : kThreads) {
    SCOPED_TRACE(thread);
    const CefRefPtr<Notes> threads(new Notes);
    CefPostTask(thread, base::BindOnce(
                            [](CefRefPtr<Notes> current) {
                              for (const CefThreadId any : kThreads) {
                                if (CefCurrentlyOn(any)) {
                                  current->note(any);
                                }
                              }
                            },
                            threads));
    const CefRefPtr<Notes> notes(new Notes);
    const auto start = std::chrono::steady_clock::now();
    std::vector<int> expected;
    for (const int delay : {180, 60, 120}) {
      CefPostDelayedTask(thread, base::BindOnce(&Notes::note, notes, 1000 + delay), delay);
    }
    for (int i = 0; i < 500; ++i) {
      CefPostTask(thread, base::BindOnce(&Notes::note, notes, i));
      expected.push_back(i);
    }
    expected.insert(expected.end(), {1060, 1120, 1180});
    ASSERT_TRUE(runUntil([&] { return notes->values().size() == expected.size(); }));
    EXPECT_EQ(threads->values(), std::vector<int>{thread});
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(180));
    std::vector<int> values = notes->values();
    EXPECT_EQ(values.front(), 0);  // it was due before the delayed tasks
    std::stable_partition(values.begin(), values.end(), [](int value) { return value < 1000; });
    EXPECT_EQ(values, expected);
  }
}

}  // namespace
}  // namespace cef_test
