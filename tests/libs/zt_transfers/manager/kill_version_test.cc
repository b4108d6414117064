#include <chrono>
#include <fstream>
#include <thread>

#include "download_fixture.h"
#include "probe.h"

namespace zt_transfers::test {
namespace {

constexpr std::size_t kSize = 2'500'000;

class KillBetweenVersions : public CDownloadTest {
 protected:
  // False when the only partial file does not begin so in time.
  bool waitForBeginning(const std::string& bytes) const {
    constexpr std::chrono::milliseconds kPause{5};
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    const auto partial = target / namesThere().at(0);
    while (contentOf(partial).compare(0, bytes.size(), bytes) != 0) {
      if (std::chrono::steady_clock::now() > until) {
        return false;
      }
      std::this_thread::sleep_for(kPause);
    }
    return true;
  }
  // Takes up what is queued, in a process of its own.
  CProbe begin() { return CProbe({sandbox.folder().string(), server.url(""), "0", "1"}); }
};

TEST_F(KillBetweenVersions, TakesNothingOfTheOneForThatOfTheOther) {
  const std::string first = patternOf(kSize);
  const std::string second = patternOf(kSize, 7);
  server.plan("/file", {fault::slow(2'000'000), fault::slow(100'000)});
  const auto group = download({offer("file", first)});
  ASSERT_TRUE(recorder.waitForGroup(
      group, [](const auto& shot) { return shot.bytesTransferred > kSize / 2; }));
  manager.shutdown();  // which makes a note of what is there
  std::ofstream(sandbox.folder() / "downloads_queued") << "queued";

  server.put("/file", second);
  {
    auto probe = begin();
    ASSERT_TRUE(waitForBeginning(second.substr(0, 1000)));
    probe.kill();
  }
  server.put("/file", first);
  auto probe = begin();
  EXPECT_EQ(probe.output(), "file\nall\n");
  EXPECT_EQ(probe.wait(), 0);
  EXPECT_TRUE(contentOf(target / "file") == first);
}

}  // namespace
}  // namespace zt_transfers::test
