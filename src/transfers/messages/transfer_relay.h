#pragma once

#include <Poco/SharedPtr.h>
#include <json/value.h>

#include <string>

#include "app/log/guarded.h"
#include "bridge/query_handler_context.h"
#include "include/base/cef_bind.h"
#include "include/base/cef_callback.h"
#include "include/cef_browser.h"
#include "include/wrapper/cef_closure_task.h"
#include "include/wrapper/cef_helpers.h"
#include "transfers/messages/message_handler.h"
#include "transfers/transfer_json.h"

namespace zantrio::messages {

// Runs `function` + the JSON text + ");" in the browser's main frame; `function` ends with the
// opening parenthesis. False when there is no main frame: the call is then dropped. Thread: UI.
bool callPage(const CefRefPtr<CefBrowser>& browser, const std::string& function,
              const Json::Value& argument);

// Forwards a transfer manager's events to the page.
//
// The manager calls back on its own threads. There the record is copied into a task for the UI
// thread, which runs the tasks in the order of posting; the task keeps the relay alive. Everything
// else happens on the UI thread.
template <class Manager>
class CTransferRelay : public CMessageHandlerBase, private Manager::ICallback {
 public:
  using GroupState = typename Manager::GroupState;
  using FileState = zt_transfers::FileState;

  CTransferRelay(const CTransferRelay&) = delete;
  CTransferRelay& operator=(const CTransferRelay&) = delete;

  // Keeps the browser and the manager, and subscribes to the manager's events.
  void attach(const QueryHandlerContext& context) override {
    CEF_REQUIRE_UI_THREAD();
    detach();
    browser_ = context.browser;
    manager_ = context.*profile_.manager;
    manager_->subscribeToEvents(this);
    subscribed_ = true;
  }

  void detach() override {
    if (subscribed_) {
      subscribed_ = false;
      manager_->subscribeToEvents(nullptr);
    }
  }

 protected:
  struct Profile {
    Poco::SharedPtr<Manager> QueryHandlerContext::*manager;
    // Functions of the page, up to and including the opening parenthesis.
    const char* groupStateChanged;
    const char* fileStateChanged;
  };

  explicit CTransferRelay(const Profile& profile) : profile_(profile) {}

  // Detaches first.
  ~CTransferRelay() override { CTransferRelay::detach(); }

  virtual void groupStateChanged(const GroupState& group) { forward(group); }

  virtual void fileStateChanged(const FileState& file) {
    Json::Value event;
    toJson(file, event);
    callPage(browser_, profile_.fileStateChanged, event);
  }

  // Sends the group to the page. False when there is no main frame.
  bool forward(const GroupState& group) const {
    return callPage(browser_, profile_.groupStateChanged, groupEventToJson(group));
  }

 private:
  void onGroupStateChanged(const GroupState& group) override {
    post(&CTransferRelay::groupStateChanged, group);
  }

  void onFileStateChanged(const FileState& file) override {
    post(&CTransferRelay::fileStateChanged, file);
  }

  // Called by the transfer library, which no exception may reach. Thread: any.
  template <class Record>
  void post(void (CTransferRelay::*operation)(const Record&), const Record& record) {
    guarded("postEvent", [&] {
      CefPostTask(TID_UI, base::BindOnce(&CTransferRelay::template run<Record>,
                                         CefRefPtr<CTransferRelay>(this), operation, record));
    });
  }

  template <class Record>
  static void run(CefRefPtr<CTransferRelay> relay, void (CTransferRelay::*operation)(const Record&),
                  const Record& record) {
    CEF_REQUIRE_UI_THREAD();
    guarded("runEvent", [&] { (relay.get()->*operation)(record); });
  }

  const Profile profile_;
  Poco::SharedPtr<Manager> manager_;
  CefRefPtr<CefBrowser> browser_;
  bool subscribed_ = false;

  IMPLEMENT_REFCOUNTING(CTransferRelay);
};

}  // namespace zantrio::messages
