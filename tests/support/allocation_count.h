// How often this thread asks for memory.
#pragma once

namespace client::test {

// Counts the thread's uses of operator new from its making on; one at a time.
class AllocationCount {
 public:
  AllocationCount();
  long count() const;

 private:
  const long before_;
};

}  // namespace client::test
