#include "support/allocation_count.h"

#include <cstdlib>
#include <new>

namespace {

thread_local long allocations = 0;

void* allocate(std::size_t size) {
  ++allocations;
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

}  // namespace

void* operator new(std::size_t size) {
  return allocate(size);
}
void* operator new[](std::size_t size) {
  return allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace client::test {

AllocationCount::AllocationCount() : before_(allocations) {}

long AllocationCount::count() const {
  return allocations - before_;
}

}  // namespace client::test
