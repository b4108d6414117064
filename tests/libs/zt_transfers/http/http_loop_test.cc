#include "http/http_loop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>

#include "fault_server.h"

namespace zt_transfers::test {
namespace {

// Of a machine that a test lets sleep.
class CSleepyClock : public IClock {
 public:
  TimePoint now() const override { return std::chrono::steady_clock::now() + slept(); }
  std::int64_t secondsSince1970() const override { return 0; }
  Duration slept() const override { return Duration(slept_.load()); }
  void sleep(Duration time) { slept_ += time.count(); }

 private:
  std::atomic<Duration::rep> slept_{0};
};

class HttpLoop : public ::testing::Test, public IHttpSink {
 protected:
  void SetUp() override {
    loop.start([] { return std::nullopt; }, [this] { exchanges.clear(); });
  }
  Write write(const HttpResponse&, const char*, std::size_t) override { return Write::kToResponse; }
  std::future<HttpResponse> get(const std::string& path) {
    auto promise = std::make_shared<std::promise<HttpResponse>>();
    loop.post([this, promise, path] {
      HttpRequest request;
      request.method = "GET";
      request.url = server.url(path);
      exchanges.push_back(
          loop.send(request, static_cast<IHttpSink&>(*this),
                    [this, promise, at = exchanges.size()](const HttpResponse& response) {
                      if (!keepsEnded) {
                        loop.retire(std::move(exchanges[at]));
                      }
                      promise->set_value(response);
                    }));
    });
    return promise->get_future();
  }

  CFaultServer server;
  CSleepyClock clock;
  std::atomic<bool> keepsEnded = false;
  std::vector<std::unique_ptr<IHttpExchange>> exchanges;  // the loop's
  CHttpLoop loop{"zt-net-test", clock};
};

TEST_F(HttpLoop, UsesNoConnectionAgainThatIsOlderThanASleep) {
  server.put("/file", "content");
  get("/file").get();
  get("/file").get();
  clock.sleep(std::chrono::seconds(30));
  get("/file").get();
  get("/file").get();
  const auto requests = server.requests();
  ASSERT_EQ(requests.size(), 4U);
  EXPECT_EQ(requests[1].connection, requests[0].connection);
  EXPECT_NE(requests[2].connection, requests[1].connection);
  EXPECT_NE(requests[3].connection, requests[1].connection);
}

TEST_F(HttpLoop, LooksNoMoreAtWhatHasEndedHoweverLongItIsKept) {
  server.put("/file", "content");
  keepsEnded = true;
  for (int times = 0; times < 3; ++times) {
    EXPECT_EQ(get("/file").get().status, 200);
    clock.sleep(std::chrono::minutes(10));
  }
}

TEST_F(HttpLoop, EndsWhatWasOpenDuringALongSleep) {
  server.planForAll(fault::stall());
  auto response = get("/file");
  ASSERT_TRUE(server.waitForRequests(1));
  clock.sleep(std::chrono::minutes(10));
  ASSERT_EQ(response.wait_for(std::chrono::seconds(30)), std::future_status::ready);
  EXPECT_TRUE(response.get().stalled);
  server.release();
}

}  // namespace
}  // namespace zt_transfers::test
