#include "zt_transfers/global_config.h"

#include <gtest/gtest.h>

namespace zt_transfers::test {
namespace {

TEST(GlobalConfig, IsOneForTheProcessAndTakesPathsAsOneByteACharacter) {
  auto* config = CZtTransfersGlobalConfig::getInstance();
  ASSERT_NE(config, nullptr);
  EXPECT_EQ(config, CZtTransfersGlobalConfig::getInstance());
  config->setRestEndPointUrl("https://service.invalid/api");
  EXPECT_EQ(config->restEndPointUrl(), "https://service.invalid/api");
  // Bytes above 0x7F come widened with or without their sign.
  config->setAppFilesPath(std::wstring{L'/', wchar_t(0xC3), wchar_t(-0x44)});
  EXPECT_EQ(config->appFilesPath(), "/\xC3\xBC");
}

}  // namespace
}  // namespace zt_transfers::test
