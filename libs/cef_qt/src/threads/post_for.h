// Tasks on behalf of an object.
#pragma once

#include <QPointer>
#include <utility>

#include "threads/threads.h"

namespace cef_qt {

// Posts work of a QObject that lives on the UI thread. The work is dropped if the object is
// destroyed before the task runs. False once the framework is shut down.
template <class Object, class Work>
bool postFor(Object* object, CefThreadId thread, Work work) {
  return postTo(thread, [owner = QPointer<Object>(object), work = std::move(work)] {
    if (owner) {
      work();
    }
  });
}

}  // namespace cef_qt
