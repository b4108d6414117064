#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/settings/main_bundle.h"
#include "bridge/query_handler_registry.h"
#include "browser/initial_files_container.h"
#include "browser/zt_cef_handler.h"
#include "src/fakes/fake_browser.h"
#include "src/fakes/fake_framework.h"
#include "src/fakes/fake_services.h"
#include "src/fakes/fake_transfers.h"
#include "src/fakes/test_bundle.h"
#include "support/log_capture.h"

namespace zantrio::test {

// A browser client with the framework, the transfer library and the platform replaced.
class ZtCefHandlerTest : public testing::Test {
 protected:
  ZtCefHandlerTest();
  ~ZtCefHandlerTest() override;

  // Replaces the client by a new one with the application's bridges.
  void createClient(ZtCefHandler::Options options);
  // Creates a browser and reports it to the client, as the framework does.
  CefRefPtr<FakeBrowser> openBrowser(int identifier = 1);
  bool sendMessage(const CefRefPtr<FakeBrowser>& browser);

  const std::string appUrl = "http://127.0.0.1:9/app";
  LogCapture log;
  FakeFramework framework;
  FakeTransfers& transfers = FakeTransfers::instance();
  FakeServices& services = FakeServices::instance();
  QueryHandlerRegistry& registry = QueryHandlerRegistry::instance();
  CefRefPtr<ZtCefHandler> client;

 private:
  TestBundle bundle_;
};

}  // namespace zantrio::test
