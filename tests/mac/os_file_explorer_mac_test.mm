#include "mac/fakes/calls.h"
#include "mac/fakes/core_foundation_fake.h"
#include "mac/fakes/system_services_fake.h"
#include "mac/fakes/workspace_fake.h"
#include "mac/mac_fixture.h"
#include "services/os_file_explorer.h"

namespace zantrio::mac_test {
namespace {

class OsFileExplorerMac : public MacTest {
 protected:
  const std::unique_ptr<ClassMethodSwap> workspaceInPlace_ = putWorkspaceInPlace();
};

TEST_F(OsFileExplorerMac, FoldersAreOpenedByTheWorkspaceAsUtf8DirectoryUrls) {
  EXPECT_TRUE(createOsFileExplorer()->openFolder("/nowhere/My Fil\xC3\xABs"));
  EXPECT_EQ(workspace().openedUrl, "file:///nowhere/My%20Fil%C3%ABs/");

  workspace().opens = false;
  EXPECT_TRUE(createOsFileExplorer()->openFolder("/nowhere")) << "the answer is not checked";
}

TEST_F(OsFileExplorerMac, AnExceptionWhileOpeningAFolderIsAFailure) {
  workspace().raises = true;
  EXPECT_FALSE(createOsFileExplorer()->openFolder("/nowhere"));
}

TEST_F(OsFileExplorerMac, UrlsAreOpenedByLaunchServicesFromAscii) {
  EXPECT_TRUE(createOsFileExplorer()->openURL("https://example.org/a%20b?c=d#e"));
  EXPECT_EQ(systemServices().openedUrl, "https://example.org/a%20b?c=d#e");
  EXPECT_EQ(coreFoundation().encodings, std::vector<CFStringEncoding>{kCFStringEncodingASCII});
  EXPECT_EQ(calls(), std::vector<std::string>{"LSOpenCFURLRef"});
}

TEST_F(OsFileExplorerMac, WhatLaunchServicesAnswersIsNotChecked) {
  systemServices().launchResult = -10814;
  EXPECT_TRUE(createOsFileExplorer()->openURL("unknown:thing"));
  for (const char* noUrl : {"", "https://example.org/Zo\xC3\xAB"}) {
    systemServices().openedUrl.clear();
    EXPECT_TRUE(createOsFileExplorer()->openURL(noUrl)) << noUrl;
    EXPECT_EQ(systemServices().openedUrl, "(null)") << noUrl;
  }
}

TEST_F(OsFileExplorerMac, AnExceptionWhileOpeningAUrlIsAFailureAndLeaksNothing) {
  systemServices().launchServicesRaise = true;
  EXPECT_FALSE(createOsFileExplorer()->openURL("https://example.org/"));
}

}  // namespace
}  // namespace zantrio::mac_test
