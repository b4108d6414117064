// Closures and callbacks; base/cef_bind.h makes them.
#ifndef CEF_INCLUDE_BASE_CEF_CALLBACK_H_
#define CEF_INCLUDE_BASE_CEF_CALLBACK_H_

#include <functional>
#include <memory>
#include <utility>

namespace base {

template <class Signature>
class OnceCallback;
template <class Signature>
class RepeatingCallback;

// A function with bound arguments that can be run repeatedly. Copies share the bound arguments,
// which are released with the last copy.
template <class R, class... Args>
class RepeatingCallback<R(Args...)> {
 public:
  RepeatingCallback() = default;
  explicit RepeatingCallback(std::function<R(Args...)> function)
      : function_(std::make_shared<const std::function<R(Args...)>>(std::move(function))) {}

  bool is_null() const { return !function_; }
  explicit operator bool() const { return !is_null(); }
  void Reset() { function_.reset(); }

  R Run(Args... args) const { return (*function_)(std::forward<Args>(args)...); }

 private:
  std::shared_ptr<const std::function<R(Args...)>> function_;
};

// A function with bound arguments that is run at most once: `std::move(callback).Run(…)`.
// The bound arguments are released after the run, or when the callback is destroyed.
template <class R, class... Args>
class OnceCallback<R(Args...)> {
 public:
  // The bound function; owned by the callback.
  class Invoker {
   public:
    virtual ~Invoker() = default;
    virtual R run(Args... args) = 0;
  };

  OnceCallback() = default;
  explicit OnceCallback(std::unique_ptr<Invoker> invoker) : invoker_(std::move(invoker)) {}
  OnceCallback(OnceCallback&&) noexcept = default;
  OnceCallback& operator=(OnceCallback&&) noexcept = default;
  // A repeating callback converts to one that runs once.
  OnceCallback(RepeatingCallback<R(Args...)> repeating)  // NOLINT(google-explicit-constructor)
      : invoker_(repeating ? std::make_unique<RepeatingInvoker>(std::move(repeating)) : nullptr) {}

  bool is_null() const { return !invoker_; }
  explicit operator bool() const { return !is_null(); }
  void Reset() { invoker_.reset(); }

  R Run(Args... args) && {
    std::unique_ptr<Invoker> invoker = std::move(invoker_);
    return invoker->run(std::forward<Args>(args)...);
  }

 private:
  class RepeatingInvoker final : public Invoker {
   public:
    explicit RepeatingInvoker(RepeatingCallback<R(Args...)> callback)
        : callback_(std::move(callback)) {}
    R run(Args... args) override { return callback_.Run(std::forward<Args>(args)...); }

   private:
    RepeatingCallback<R(Args...)> callback_;
  };

  std::unique_ptr<Invoker> invoker_;
};

using OnceClosure = OnceCallback<void()>;
using RepeatingClosure = RepeatingCallback<void()>;

}  // namespace base

#endif  // CEF_INCLUDE_BASE_CEF_CALLBACK_H_
