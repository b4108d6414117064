// Counts memory allocations of a thread.
#pragma once

namespace client::test {

// Counts the thread's calls of operator new since its construction. At most one lives at a time.
class AllocationCount {
 public:
  AllocationCount();
  long count() const;

 private:
  const long before_;
};

}  // namespace client::test
