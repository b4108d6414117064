#pragma once

#include <Poco/Event.h>
#include <Poco/Net/HTTPRequestHandler.h>
#include <Poco/Net/HTTPRequestHandlerFactory.h>

#include "devservice/api_area.h"
#include "devservice/fault_area.h"
#include "devservice/received_area.h"
#include "devservice/storage_area.h"
#include "devservice/web_area.h"

namespace zantrio::devservice {

// The areas that handle requests. Thread: any.
struct Areas {
  CApiArea api;
  CReceivedArea received;
  CStorageArea storage;
  CWebArea web;
  CFaultArea faultAdministration;
  CFaultRules& faultRules;
  Poco::Event& stopping;
};

// Passes each request to its area and turns the area's exceptions into responses.
class CDispatcher : public Poco::Net::HTTPRequestHandler {
 public:
  explicit CDispatcher(Areas& areas) : areas_(areas) {}

  void handleRequest(Poco::Net::HTTPServerRequest& request,
                     Poco::Net::HTTPServerResponse& response) override;

 private:
  void handle(CExchange& exchange);
  void route(CExchange& exchange);
  // Applies faults that need no area; true if the fault was the response.
  bool fail(CExchange& exchange);

  Areas& areas_;
};

class CDispatcherFactory : public Poco::Net::HTTPRequestHandlerFactory {
 public:
  explicit CDispatcherFactory(Areas& areas) : areas_(areas) {}

  Poco::Net::HTTPRequestHandler* createRequestHandler(
      const Poco::Net::HTTPServerRequest& request) override;

 private:
  Areas& areas_;
};

}  // namespace zantrio::devservice
