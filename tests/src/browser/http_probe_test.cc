#include "browser/http_probe.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

#include "support/http_service.h"

namespace zantrio {
namespace {

namespace net = Poco::Net;

const std::string kAgent = "the browser/1.0";

// Answers the path "/500" with the status 500, and so on.
void answerWithStatus(net::HTTPServerRequest& request, net::HTTPServerResponse& response) {
  EXPECT_EQ(request.get("User-Agent", ""), kAgent);
  const int status = std::stoi(request.getURI().substr(1));
  response.setStatus(static_cast<net::HTTPResponse::HTTPStatus>(status));
  if (status == 302) {
    response.set("Location", "/200");
  }
  response.send() << "<p>a page</p>";
}

TEST(HttpProbe, TrustsAnswersThatPromiseAPage) {
  const test::HttpService service(answerWithStatus);
  for (const char* path : {"/200", "/302", "/401", "/403"}) {
    EXPECT_TRUE(probeWithHttp(service.url(path), kAgent, {})) << path;
  }
  for (const char* path : {"/500", "/502", "/503", "/404"}) {
    EXPECT_FALSE(probeWithHttp(service.url(path), kAgent, {})) << path;
  }
}

TEST(HttpProbeWithoutService, Fails) {
  net::ServerSocket unused(net::SocketAddress("127.0.0.1", 0));
  const std::string url = "http://" + unused.address().toString() + "/";
  unused.close();
  EXPECT_FALSE(probeWithHttp(url, kAgent, {}));
  EXPECT_FALSE(probeWithHttp("file:///etc/passwd", kAgent, {}));
  EXPECT_FALSE(probeWithHttp("", kAgent, {}));
}

TEST(HttpProbeWithoutAnswer, EndsWhenItIsToldTo) {
  net::ServerSocket silent(net::SocketAddress("127.0.0.1", 0));
  const std::string url = "http://" + silent.address().toString() + "/";
  std::atomic<bool> result{true};
  const auto start = std::chrono::steady_clock::now();
  net::StreamSocket connection;
  {
    const StoppableThread prober(
        [&](const StopFlag& stop) { result = probeWithHttp(url, kAgent, stop); });
    connection = silent.acceptConnection();
  }
  EXPECT_FALSE(result);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));
}

}  // namespace
}  // namespace zantrio
