// A page in the framework's browser.
#pragma once

#include <memory>

#include "include/cef_app.h"

namespace bench {

CefRefPtr<CefApp> makeApp();

class FrameworkPage {
 public:
  FrameworkPage();
  ~FrameworkPage();
  FrameworkPage(const FrameworkPage&) = delete;
  FrameworkPage& operator=(const FrameworkPage&) = delete;

  double queriesPerSecond(int inFlight, int count);
  double scriptsPerSecond(int count);
  bool scriptsInOrder();

 private:
  class Client;

  CefRefPtr<Client> client_;
};

}  // namespace bench
