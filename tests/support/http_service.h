#pragma once

#include <Poco/Net/HTTPRequestHandler.h>
#include <Poco/Net/HTTPRequestHandlerFactory.h>
#include <Poco/Net/HTTPServer.h>
#include <Poco/Net/HTTPServerRequest.h>
#include <Poco/Net/HTTPServerResponse.h>
#include <Poco/Net/ServerSocket.h>

#include <functional>
#include <string>

namespace zantrio::test {

// An HTTP server on 127.0.0.1. The test's function answers the requests, on the server's threads.
class HttpService {
 public:
  using Answer = std::function<void(Poco::Net::HTTPServerRequest&, Poco::Net::HTTPServerResponse&)>;

  explicit HttpService(Answer answer)
      : server_(new Factory(std::move(answer)),
                Poco::Net::ServerSocket(Poco::Net::SocketAddress("127.0.0.1", 0)),
                new Poco::Net::HTTPServerParams) {
    server_.start();
  }
  ~HttpService() { server_.stopAll(true); }

  std::string url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(server_.port()) + path;
  }

 private:
  struct Handler : Poco::Net::HTTPRequestHandler {
    explicit Handler(const Answer& given) : answer(given) {}
    void handleRequest(Poco::Net::HTTPServerRequest& request,
                       Poco::Net::HTTPServerResponse& response) override {
      answer(request, response);
    }
    const Answer& answer;
  };
  struct Factory : Poco::Net::HTTPRequestHandlerFactory {
    explicit Factory(Answer given) : answer(std::move(given)) {}
    Poco::Net::HTTPRequestHandler* createRequestHandler(
        const Poco::Net::HTTPServerRequest& /*request*/) override {
      return new Handler(answer);
    }
    const Answer answer;
  };

  Poco::Net::HTTPServer server_;
};

}  // namespace zantrio::test
