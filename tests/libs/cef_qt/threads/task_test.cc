#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
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

// What tasks noted down, from any thread.
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

TEST(Tasks, RunOnTheThreadTheyWerePostedTo) {
  for (const CefThreadId thread : kThreads) {
    std::atomic<int> right{-1};
    CefPostTask(thread, base::BindOnce(
                            [](std::atomic<int>* result, CefThreadId expected) {
                              int current = 0;
                              for (const CefThreadId any : kThreads) {
                                current += CefCurrentlyOn(any) ? 1 : 0;
                              }
                              *result = current == 1 && CefCurrentlyOn(expected);
                            },
                            &right, thread));
    ASSERT_TRUE(runUntil([&] { return right != -1; })) << thread;
    EXPECT_EQ(right, 1) << thread;
  }
}

TEST(Tasks, OfOneThreadRunInPostingOrder) {
  for (const CefThreadId thread : {TID_UI, TID_IO}) {
    const CefRefPtr<Notes> notes(new Notes);
    std::vector<int> expected;
    for (int i = 0; i < 500; ++i) {
      CefPostTask(thread, base::BindOnce(&Notes::note, notes, i));
      expected.push_back(i);
    }
    ASSERT_TRUE(runUntil([&] { return notes->values().size() == expected.size(); }));
    EXPECT_EQ(notes->values(), expected);
  }
}

TEST(Tasks, WithDelaysRunByDueTimeAndNotEarlier) {
  for (const CefThreadId thread : {TID_UI, TID_FILE_BACKGROUND}) {
    const CefRefPtr<Notes> notes(new Notes);
    const auto start = std::chrono::steady_clock::now();
    for (const int delay : {120, 40, 80}) {
      CefPostDelayedTask(thread, base::BindOnce(&Notes::note, notes, delay), delay);
    }
    CefPostTask(thread, base::BindOnce(&Notes::note, notes, 0));
    ASSERT_TRUE(runUntil([&] { return notes->values().size() == 4; }));
    EXPECT_EQ(notes->values(), (std::vector<int>{0, 40, 80, 120}));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(120));
  }
}

TEST(Tasks, CanBePostedFromManyThreadsAtOnce) {
  const CefRefPtr<Notes> notes(new Notes);
  std::vector<std::thread> posters;
  for (int i = 0; i < 4; ++i) {
    posters.emplace_back([&notes] {
      for (int n = 0; n < 200; ++n) {
        EXPECT_TRUE(CefPostTask(TID_UI, base::BindOnce(&Notes::note, notes, n)));
      }
    });
  }
  for (std::thread& poster : posters) {
    poster.join();
  }
  EXPECT_TRUE(runUntil([&] { return notes->values().size() == 800; }));
}

}  // namespace
}  // namespace cef_test
