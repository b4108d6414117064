#pragma once

#include <exception>
#include <utility>

#include "app/logger.h"
#include "include/base/cef_bind.h"
#include "include/base/cef_callback.h"
#include "include/wrapper/cef_closure_task.h"

namespace zantrio::messages {

template <class Relay, class Record>
void runEvent(CefRefPtr<Relay> relay, void (Relay::*operation)(const Record&),
              const Record& record) {
  try {
    (relay.get()->*operation)(record);
  } catch (const std::exception& exception) {
    logError("runEvent", ": Exception: ", exception.what());
  }
}

// Runs the relay's operation with a copy of the record on the UI thread, in the order of posting.
// Thread: any; called by the transfer library, which no exception may reach.
template <class Relay, class Record>
void postEvent(Relay* relay, void (Relay::*operation)(const Record&), const Record& record) {
  try {
    CefPostTask(TID_UI, base::BindOnce(&runEvent<Relay, Record>, CefRefPtr<Relay>(relay), operation,
                                       record));
  } catch (const std::exception& exception) {
    logError("postEvent", ": Exception: ", exception.what());
  }
}

}  // namespace zantrio::messages
