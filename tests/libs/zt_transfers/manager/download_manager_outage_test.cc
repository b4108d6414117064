#include "download_fixture.h"

namespace zt_transfers::test {
namespace {

class DownloadOutage : public CDownloadTest {};

TEST_F(DownloadOutage, CostsNoFileAndFewRequests) {
  constexpr std::size_t kFiles = 200;
  constexpr std::size_t kAtOnce = 8;
  constexpr std::size_t kProbes = 2;
  retryAtMost(0);
  server.planForAll(fault::status(502));
  std::vector<File> files;
  for (std::size_t at = 0; at < kFiles; ++at) {
    files.push_back(offer("f" + std::to_string(at), "content"));
  }
  const auto group = download(files);
  ASSERT_TRUE(server.waitForRequests(kAtOnce + kProbes));
  server.planForAll(fault::none());
  EXPECT_TRUE(recorder.waitForGroupState(group, kGroupCompleted));
  EXPECT_EQ(recorder.group(group).filesCompleted, static_cast<std::int32_t>(kFiles));
  EXPECT_LE(server.requests().size(), kFiles + kAtOnce + kProbes + 1);
}

}  // namespace
}  // namespace zt_transfers::test
