#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "include/base/cef_bind.h"
#include "include/cef_base.h"

namespace {

class Counted : public CefBaseRefCounted {
 public:
  explicit Counted(bool* deleted = nullptr) : deleted_(deleted) {}
  ~Counted() override {
    if (deleted_) {
      *deleted_ = true;
    }
  }
  void add(int value) { sum += value; }

  int sum = 0;

 private:
  bool* const deleted_;
  IMPLEMENT_REFCOUNTING(Counted);
};

TEST(Bind, KeepsACountedReceiverAliveUntilItHasRunUnlessItIsUnretained) {
  bool deleted = false;
  CefRefPtr<Counted> object(new Counted(&deleted));
  base::OnceClosure unretained = base::BindOnce(&Counted::add, base::Unretained(object.get()), 4);
  EXPECT_TRUE(object->HasOneRef());
  std::move(unretained).Run();
  EXPECT_EQ(object->sum, 4);
  base::OnceClosure closure = base::BindOnce(&Counted::add, object, 2);
  base::OnceClosure fromRaw = base::BindOnce(&Counted::add, object.get(), 3);
  object = nullptr;
  EXPECT_FALSE(deleted);
  std::move(closure).Run();
  EXPECT_FALSE(deleted);
  std::move(fromRaw).Run();
  EXPECT_TRUE(deleted);
}

TEST(Bind, MovesValuesIntoTheCallAndPassesTheRemainingArguments) {
  auto callback = base::BindOnce([](std::unique_ptr<int> owned, const std::string& text,
                                    int given) { return text + std::to_string(*owned + given); },
                                 std::make_unique<int>(40), std::string("sum "));
  EXPECT_EQ(std::move(callback).Run(2), "sum 42");
}

TEST(RefPtr, CountsConvertsAndReleases) {
  bool deleted = false;
  CefRefPtr<Counted> first(new Counted(&deleted));
  CefRefPtr<CefBaseRefCounted> second = first;
  EXPECT_EQ(first, second);
  EXPECT_FALSE(first->HasOneRef());
  first = nullptr;
  EXPECT_FALSE(deleted);
  CefRefPtr<CefBaseRefCounted> third = std::move(second);
  EXPECT_FALSE(second);  // NOLINT(bugprone-use-after-move)
  third = third.get();
  EXPECT_FALSE(deleted);
  third = nullptr;
  EXPECT_TRUE(deleted);
}

}  // namespace
