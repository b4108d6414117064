#include <sys/wait.h>

#include <chrono>
#include <memory>
#include <random>
#include <thread>

#include "parts_fixture.h"
#include "probe.h"

namespace zt_transfers::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kFiles = 3;
constexpr std::size_t kMaxConcurrent =
    8;  // requests of the probe, which is not configured otherwise

class KillDuringMultipart : public CPartsTest {
 protected:
  static std::string content(int number) {
    return patternOf(static_cast<std::size_t>(10 + 9 * number) * kPart + 77,
                     static_cast<unsigned>(number));
  }
  // Announces the files to a new message, and gives the arguments to upload them with.
  std::vector<std::string> newRound() {
    createMessage();
    round_ = std::make_unique<CSandbox>();
    std::string url;
    for (int number = 0; number < kFiles; ++number) {
      const std::string name = std::to_string(number);
      const std::string place = announce("up", name);
      url = server_->url() + place.substr(0, place.rfind("/up/"));
      round_->file("file" + name, content(number));
    }
    request("DELETE", "/faults");
    fault("PUT", "*partNumber=*", R"("type":"rate","bytesPerSecond":2000000)");
    return {round_->folder().string(), url,   std::to_string(kFiles), "0",
            std::to_string(kPart),     token_};
  }

  std::unique_ptr<CSandbox> round_;
};

TEST_F(KillDuringMultipart, SendsNothingAgainButWhatWasUnderWay) {
  std::size_t parts = 0;
  for (int number = 0; number < kFiles; ++number) {
    parts += content(number).size() / kPart + 1;
  }
  const auto end = Clock::now() + killingTime();
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::minstd_rand random(seed);
  std::size_t kills = 0;
  std::size_t sentAgain = 0;
  for (int rounds = 1; rounds == 1 || Clock::now() < end; ++rounds) {
    const auto arguments = newRound();
    std::size_t killsNow = 0;
    bool all = false;
    while (!all && Clock::now() < end) {
      CProbe probe(arguments);
      const std::chrono::milliseconds life(random() % 400);
      std::this_thread::sleep_for(life);  // a random moment is what this is about
      probe.kill();
      all = probe.output().find("all") != std::string::npos;
      ++killsNow;
    }
    if (!all) {
      CProbe probe(arguments);
      EXPECT_NE(probe.output().find("all"), std::string::npos);
      ASSERT_EQ(probe.wait(), 0);
    }
    for (int number = 0; number < kFiles; ++number) {
      ASSERT_TRUE(arrived("up/" + std::to_string(number)) == content(number)) << number;
    }
    const std::size_t sent = counted(1);
    ASSERT_GE(sent, parts);
    ASSERT_LE(sent, parts + killsNow * kMaxConcurrent);
    kills += killsNow;
    sentAgain += sent - parts;
  }
  std::printf("%zu kills; %zu parts that were under way sent again\n", kills, sentAgain);
  EXPECT_GT(kills, 3U);
}

}  // namespace
}  // namespace zt_transfers::test
