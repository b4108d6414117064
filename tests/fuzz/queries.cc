// Any text as a page's query to each bridge: it is answered once, with JSON or a reason, or not
// known, and nothing is thrown. Behind the bridges are stand-ins for the system and the transfers.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "bridge/json_text.h"
#include "bridge/query_handler_base.h"
#include "bridge/query_handler_context.h"
#include "expect.h"
#include "files/query_handler_file_handle_chooser.h"
#include "services/query_handler_address_book_manager.h"
#include "services/query_handler_event_notification.h"
#include "services/query_handler_native_app.h"
#include "src/fakes/fake_framework.h"
#include "src/fakes/fake_query_callback.h"
#include "src/fakes/fake_services.h"
#include "src/fakes/fake_transfers.h"
#include "transfers/query_handler_download_manager.h"
#include "transfers/query_handler_upload_manager.h"
#include "transfers/transfer_json.h"

namespace fuzz {
namespace {

using namespace zantrio;

// One bridge of each kind, for all inputs.
class Bridges {
 public:
  Bridges() {
    setenv("HOME", "/nonexistent", 1);  // downloads ask for a folder, and get none
    add<CQueryHandlerUploadManager>();
    add<CQueryHandlerDownloadManager>();
    add<CQueryHandlerNativeApp>();
    add<CQueryHandlerEventNotification>();
    add<CQueryHandlerAddressBookManager>();
    add<CQueryHandlerFileHandleChooser>();
    QueryHandlerContext context;
    context.uploadManager = new zt_transfers::CUploadManager;
    context.downloadManager = new zt_transfers::CDownloadManager;
    for (const auto& handler : handlers_) {
      handler->setHandlerData(context);
    }
  }

  void ask(std::size_t bridge, const std::string& query) {
    resetStandIns();
    const CefRefPtr<test::FakeQueryCallback> callback(new test::FakeQueryCallback);
    const bool known =
        handlers_[bridge % handlers_.size()]->OnQuery(nullptr, nullptr, 1, query, false, callback);
    expect(callback->successes.size() + callback->failures.size() == (known ? 1U : 0U));
    Json::Value answer;
    expect(callback->successes.empty() || parseJson(callback->successes[0], answer));
  }

 private:
  template <class Handler>
  void add() {
    handlers_.push_back(std::make_unique<Handler>());
  }
  static void resetStandIns() {
    test::FakeServices::instance().reset();
    test::FakeTransfers& transfers = test::FakeTransfers::instance();
    transfers.calls.clear();
    transfers.uploadFiles.clear();
    transfers.downloadFiles.clear();
    transfers.uploadGroups.resize(1);
    transfers.downloadGroups.resize(1);
  }

  test::FakeFramework framework_;
  std::vector<std::unique_ptr<CQueryHandlerBase>> handlers_;
};

// A description of a file is taken as the page gave it, or left out.
void checkRecord(const Json::Value& json) {
  zt_transfers::CUploadManager::FileDesc upload;
  if (fromJson(json, upload)) {
    expect(narrowToBytes(upload.fileURL) == json.get("fileURL", Json::Value()).asString());
  }
  zt_transfers::CDownloadManager::FileDownloadDetails download;
  if (fromJson(json, download)) {
    expect(narrowToBytes(download.path) == json.get("path", Json::Value()).asString());
  }
}

void checkJson(const std::string& text) {
  Json::Value json;
  try {
    if (!parseJson(text, json)) {
      return;
    }
  } catch (const Json::RuntimeError&) {
    return;  // nested too deeply: a query of this kind is answered by the exception's text
  }
  for (const Json::Value& element : json) {
    checkRecord(element);
  }
  Json::Value again;
  expect(parseJson(writeCompactJson(json), again));
}

}  // namespace
}  // namespace fuzz

// The first byte chooses the bridge.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::Bridges bridges;
  if (size != 0) {
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    bridges.ask(data[0], text);
    fuzz::checkJson(text);
  }
  return 0;
}
