#pragma once

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

namespace zantrio::mac_test {

// Replaces a system class's method by another class's method of the same name while it lives.
class MethodSwap {
 public:
  MethodSwap(const MethodSwap&) = delete;
  MethodSwap& operator=(const MethodSwap&) = delete;
  ~MethodSwap() { method_setImplementation(method_, original_); }

 protected:
  MethodSwap(Method of, Method with)
      : method_(of), original_(method_setImplementation(of, method_getImplementation(with))) {}

 private:
  const Method method_;
  const IMP original_;
};

class ClassMethodSwap : public MethodSwap {
 public:
  ClassMethodSwap(Class of, Class with, SEL name)
      : MethodSwap(class_getClassMethod(of, name), class_getClassMethod(with, name)) {}
};

class InstanceMethodSwap : public MethodSwap {
 public:
  InstanceMethodSwap(Class of, Class with, SEL name)
      : MethodSwap(class_getInstanceMethod(of, name), class_getInstanceMethod(with, name)) {}
};

}  // namespace zantrio::mac_test
