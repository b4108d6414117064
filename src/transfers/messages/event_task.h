#pragma once

#include "app/log/guarded.h"
#include "include/base/cef_bind.h"
#include "include/base/cef_callback.h"
#include "include/wrapper/cef_closure_task.h"

namespace zantrio::messages {

template <class Relay, class Record>
void runEvent(CefRefPtr<Relay> relay, void (Relay::*operation)(const Record&),
              const Record& record) {
  guarded("runEvent", [&] { (relay.get()->*operation)(record); });
}

// Runs the relay's operation with a copy of the record on the UI thread, in the order of posting.
// Thread: any; called by the transfer library, which no exception may reach.
template <class Relay, class Record>
void postEvent(Relay* relay, void (Relay::*operation)(const Record&), const Record& record) {
  guarded("postEvent", [&] {
    CefPostTask(TID_UI, base::BindOnce(&runEvent<Relay, Record>, CefRefPtr<Relay>(relay), operation,
                                       record));
  });
}

}  // namespace zantrio::messages
