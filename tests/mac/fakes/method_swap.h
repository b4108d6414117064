#pragma once

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

namespace zantrio::mac_test {

// Lets a class method of the system's answer what another class's of the same name does, until the
// end of the object's life.
class ClassMethodSwap {
 public:
  ClassMethodSwap(Class of, Class with, SEL name)
      : method_(class_getClassMethod(of, name)),
        original_(method_setImplementation(
            method_, method_getImplementation(class_getClassMethod(with, name)))) {}
  ClassMethodSwap(const ClassMethodSwap&) = delete;
  ClassMethodSwap& operator=(const ClassMethodSwap&) = delete;
  ~ClassMethodSwap() { method_setImplementation(method_, original_); }

 private:
  const Method method_;
  const IMP original_;
};

}  // namespace zantrio::mac_test
