#include "devservice/dispatcher.h"

#include <Poco/Net/HTTPServerSession.h>
#include <Poco/Net/IPAddress.h>
#include <Poco/Net/NetException.h>
#include <Poco/String.h>

#include <iostream>

#include "devservice/http_error.h"

namespace zantrio::devservice {

namespace {

Json::Value errorBody(const std::string& code, const std::string& message) {
  Json::Value body;
  body["error"]["code"] = code;
  body["error"]["message"] = message;
  return body;
}

void respondError(CExchange& exchange, int status, const std::string& code,
                  const std::string& message) {
  if (!exchange.response.sent()) {
    exchange.respond(status, errorBody(code, message));
  }
}

void respondFault(CExchange& exchange) {
  const Fault& fault = exchange.fault;
  if (fault.body.empty()) {
    return exchange.respond(fault.status, errorBody("fault", "This failure was asked for."));
  }
  exchange.discardBody();
  exchange.response.setStatusAndReason(
      static_cast<Poco::Net::HTTPResponse::HTTPStatus>(fault.status));
  exchange.response.setContentType(fault.body.front() == '<' ? "application/xml" : "text/plain");
  exchange.response.sendBuffer(fault.body.data(), fault.body.size());
}

// Pages of other sites in the user's browser can reach 127.0.0.1 too; they must not change
// anything.
void refuseForeignPages(const CExchange& exchange) {
  const std::string& method = exchange.method();
  const std::string origin = exchange.header("Origin");
  if (method == "GET" || method == "HEAD" || origin.empty() || origin == exchange.baseUrl()) {
    return;
  }
  throw CHttpError(403, "foreign_origin",
                   "Pages of " + printable(origin) + " cannot change anything here.");
}

bool isLoopback(const std::string& host) {
  Poco::Net::IPAddress address;
  return host == "localhost" ||
         (Poco::Net::IPAddress::tryParse(host, address) && address.isLoopback());
}

// A site can let its name lead to 127.0.0.1, so that its pages count as this service's own.
void refuseForeignNames(const CExchange& exchange) {
  const std::string host = exchange.header("Host");
  const std::string own = exchange.request.serverAddress().host().toString();
  std::string name = Poco::toLower(host.substr(0, host.rfind(':')));
  if (host.ends_with(']') || name.empty()) {
    name = host;  // without a port
  }
  if (name.starts_with('[') && name.ends_with(']')) {
    name = name.substr(1, name.size() - 2);
  }
  if (!host.empty() && name != own && !isLoopback(name)) {
    throw CHttpError(403, "foreign_host", "This service is not " + printable(host) + ".");
  }
}

void closeConnection(Poco::Net::HTTPServerRequestImpl& request,
                     Poco::Net::HTTPServerResponse& response) {
  response.setKeepAlive(false);
  try {
    request.session().socket().close();
  } catch (const Poco::Exception&) {
    // The connection is closed in either case.
  }
}

}  // namespace

void CDispatcher::handleRequest(Poco::Net::HTTPServerRequest& baseRequest,
                                Poco::Net::HTTPServerResponse& response) {
  auto& request = dynamic_cast<Poco::Net::HTTPServerRequestImpl&>(baseRequest);
  try {
    try {
      CExchange exchange(request, response, areas_.stopping);
      handle(exchange);
      exchange.linger();
    } catch (const CHttpError& error) {  // the URL itself
      response.setKeepAlive(false);
      response.setStatusAndReason(static_cast<Poco::Net::HTTPResponse::HTTPStatus>(error.status()));
      const std::string text = errorBody(error.code(), error.what()).toStyledString();
      response.setContentType("application/json; charset=utf-8");
      response.sendBuffer(text.data(), text.size());
    }
  } catch (const CConnectionLost&) {
    closeConnection(request, response);
  } catch (const Poco::IOException&) {  // network errors, including resets and time-outs
    closeConnection(request, response);
  } catch (const Poco::TimeoutException&) {
    closeConnection(request, response);
  }
}

void CDispatcher::handle(CExchange& exchange) {
  try {
    route(exchange);
  } catch (const CHttpError& error) {
    respondError(exchange, error.status(), error.code(), error.what());
  } catch (const CConnectionLost&) {
    throw;
  } catch (const Poco::Exception&) {
    throw;
  } catch (const std::system_error& error) {
    const bool full = error.code() == std::errc::no_space_on_device;
    std::cerr << "zantrio-devservice: " << exchange.method() << " " << exchange.path() << ": "
              << error.what() << std::endl;
    respondError(exchange, full ? 507 : 500, full ? "disk_full" : "storage_failed",
                 full ? "The service's disk is full."
                      : "The service could not use its disk: " + error.code().message() + ".");
  } catch (const std::exception& error) {
    std::cerr << "zantrio-devservice: " << exchange.method() << " " << exchange.path() << ": "
              << error.what() << std::endl;
    respondError(exchange, 500, "internal", "Something went wrong in the service.");
  }
}

void CDispatcher::route(CExchange& exchange) {
  const auto& segments = exchange.segments();
  refuseForeignNames(exchange);
  refuseForeignPages(exchange);
  const std::string area = segments.empty() ? std::string() : segments.front();
  if (area == "faults") {
    return areas_.faultAdministration.handle(exchange);
  }
  exchange.fault = areas_.faultRules.match(exchange.method(), exchange.path(), exchange.rawQuery());
  if (fail(exchange)) {
    return;
  }
  if (area == "storage") {
    areas_.storage.handle(exchange);
  } else if (area == "api" && segments.size() > 1 && segments[1] == "received") {
    areas_.received.handle(exchange);
  } else if (area == "api") {
    areas_.api.handle(exchange);
  } else if (area == "app") {
    areas_.web.handle(exchange);
  } else if (area.empty()) {
    exchange.response.set("Location", "/app");
    exchange.respondEmpty(302);
  } else {
    throw CHttpError(404, "not_found", "There is nothing at " + printable(exchange.path()) + ".");
  }
}

bool CDispatcher::fail(CExchange& exchange) {
  const Fault& fault = exchange.fault;
  switch (fault.type) {
    case Fault::Type::kStatus:
      if (fault.retryAfter) {
        exchange.response.set("Retry-After", std::to_string(*fault.retryAfter));
      }
      respondFault(exchange);
      return true;
    case Fault::Type::kDelay:
      exchange.wait(fault.milliseconds);
      return false;
    case Fault::Type::kReset:
      if (fault.afterBytes == 0) {
        exchange.reset();
      }
      return false;
    default:
      return false;
  }
}

Poco::Net::HTTPRequestHandler* CDispatcherFactory::createRequestHandler(
    const Poco::Net::HTTPServerRequest& /*request*/) {
  return new CDispatcher(areas_);
}

}  // namespace zantrio::devservice
