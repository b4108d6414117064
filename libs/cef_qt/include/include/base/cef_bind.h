// base::BindOnce and base::BindRepeating bind a function or method to its first arguments.
#ifndef CEF_INCLUDE_BASE_CEF_BIND_H_
#define CEF_INCLUDE_BASE_CEF_BIND_H_

#include <functional>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

#include "include/base/cef_callback.h"
#include "include/base/cef_scoped_refptr.h"

namespace base {

template <class T>
class UnretainedWrapper {
 public:
  explicit UnretainedWrapper(T* object) : object_(object) {}
  T* get() const { return object_; }

 private:
  T* object_;
};

// Binds a plain pointer without keeping its object alive; the caller must do that.
template <class T>
UnretainedWrapper<T> Unretained(T* object) {
  return UnretainedWrapper<T>(object);
}

namespace internal {

// Unwraps a bound argument for the call.
template <class T>
T&& unwrap(T&& value) {
  return std::forward<T>(value);
}
template <class T>
T* unwrap(const UnretainedWrapper<T>& wrapper) {
  return wrapper.get();
}
template <class T>
T* unwrap(UnretainedWrapper<T>& wrapper) {
  return wrapper.get();
}
template <class T>
T* unwrap(UnretainedWrapper<T>&& wrapper) {
  return wrapper.get();
}

// The stored type of a method's receiver: plain pointers become reference-counting ones.
template <class T>
scoped_refptr<T> retainReceiver(T* receiver) {
  return scoped_refptr<T>(receiver);
}
template <class T>
T retainReceiver(T receiver) {
  return receiver;
}

template <class F>
struct FunctorTraits : FunctorTraits<decltype(&F::operator())> {
  static_assert(std::is_empty_v<F>, "Capturing lambdas cannot be bound: bind the values instead");
};
template <class R, class... A>
struct FunctorTraits<R (*)(A...)> {
  using Result = R;
  using Parameters = std::tuple<A...>;
};
template <class R, class C, class... A>
struct FunctorTraits<R (C::*)(A...)> {
  using Result = R;
  using Parameters = std::tuple<A...>;
};
template <class R, class C, class... A>
struct FunctorTraits<R (C::*)(A...) const> {
  using Result = R;
  using Parameters = std::tuple<A...>;
};

template <class M, class Receiver, class... A>
decltype(auto) runMethod(M method, Receiver&& receiver, A&&... args) {
  auto&& object = unwrap(std::forward<Receiver>(receiver));
  return ((*object).*method)(unwrap(std::forward<A>(args))...);
}
template <class F, class... A>
decltype(auto) run(F& functor, A&&... args) {
  if constexpr (std::is_member_function_pointer_v<std::remove_const_t<F>>) {
    return runMethod(functor, std::forward<A>(args)...);
  } else {
    return functor(unwrap(std::forward<A>(args))...);
  }
}

// The parameters that remain after `bound` of them.
template <class R, class Parameters, std::size_t bound, class Indices>
struct RemainingSignature;
template <class R, class Parameters, std::size_t bound, std::size_t... i>
struct RemainingSignature<R, Parameters, bound, std::index_sequence<i...>> {
  using type = R(std::tuple_element_t<bound + i, Parameters>...);
};

template <class F, std::size_t given>
struct BoundSignature {
  using Traits = FunctorTraits<F>;
  static constexpr std::size_t kBound = given - (std::is_member_function_pointer_v<F> ? 1 : 0);
  static constexpr std::size_t kAll = std::tuple_size_v<typename Traits::Parameters>;
  static_assert(kBound <= kAll, "More arguments are bound than the function takes");
  using type = typename RemainingSignature<typename Traits::Result, typename Traits::Parameters,
                                           kBound, std::make_index_sequence<kAll - kBound>>::type;
};

template <class F, class... Bound>
auto store(F&& functor, Bound&&... bound) {
  if constexpr (std::is_member_function_pointer_v<std::decay_t<F>>) {
    return [](auto&& receiver, auto&&... rest) {
      auto kept = retainReceiver(
          std::decay_t<decltype(receiver)>(std::forward<decltype(receiver)>(receiver)));
      return std::tuple<decltype(kept), std::decay_t<decltype(rest)>...>(
          std::move(kept), std::forward<decltype(rest)>(rest)...);
    }(std::forward<Bound>(bound)...);
  } else {
    (void)functor;
    return std::tuple<std::decay_t<Bound>...>(std::forward<Bound>(bound)...);
  }
}

template <class F, class Stored, class Signature>
class BoundOnce;
template <class F, class Stored, class R, class... Args>
class BoundOnce<F, Stored, R(Args...)> final : public OnceCallback<R(Args...)>::Invoker {
 public:
  BoundOnce(F functor, Stored stored) : functor_(functor), stored_(std::move(stored)) {}

  R run(Args... args) override {
    return std::apply(
        [&](auto&... bound) -> R {
          return internal::run(functor_, std::move(bound)..., std::forward<Args>(args)...);
        },
        stored_);
  }

 private:
  F functor_;
  Stored stored_;
};

template <class F, class Stored, class Signature>
struct BoundRepeating;
template <class F, class Stored, class R, class... Args>
struct BoundRepeating<F, Stored, R(Args...)> {
  R operator()(Args... args) const {
    return std::apply(
        [&](const auto&... bound) -> R {
          return internal::run(functor, bound..., std::forward<Args>(args)...);
        },
        stored);
  }

  F functor;
  Stored stored;
};

}  // namespace internal

// Binds a function, a captureless lambda, or a method with its receiver first. The receiver may be
// a CefRefPtr (keeps its object alive), a plain pointer to a counted object (likewise) or
// base::Unretained. Bound values are moved into the call.
template <class F, class... Bound>
auto BindOnce(F functor, Bound&&... bound) {
  using Signature = typename internal::BoundSignature<F, sizeof...(Bound)>::type;
  auto stored = internal::store(functor, std::forward<Bound>(bound)...);
  using State = internal::BoundOnce<F, decltype(stored), Signature>;
  return OnceCallback<Signature>(std::make_unique<State>(functor, std::move(stored)));
}

// Like BindOnce, for callbacks that run repeatedly. Bound values are passed as const references.
template <class F, class... Bound>
auto BindRepeating(F functor, Bound&&... bound) {
  using Signature = typename internal::BoundSignature<F, sizeof...(Bound)>::type;
  auto stored = internal::store(functor, std::forward<Bound>(bound)...);
  using State = internal::BoundRepeating<F, decltype(stored), Signature>;
  return RepeatingCallback<Signature>(std::function<Signature>(State{functor, std::move(stored)}));
}

}  // namespace base

#endif  // CEF_INCLUDE_BASE_CEF_BIND_H_
