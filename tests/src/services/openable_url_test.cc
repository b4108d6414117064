#include "services/openable_url.h"

#include <gtest/gtest.h>

namespace zantrio {
namespace {

TEST(OpenableUrl, AllowsPagesMessagesAndCalls) {
  for (const std::string url :
       {"https://example.test", "HTTP://Example.test:8080/a/b?c=d&e=%C3%A4#f",
        "https://user@[::1]/x", "mailto:a.b+c@example.test?subject=Hello%20you", "tel:+49-30-123",
        "sms:+123"}) {
    EXPECT_TRUE(isOpenableUrl(url)) << url;
  }
}

TEST(OpenableUrl, RefusesWhatCouldStartAProgramOrOpenALocalFile) {
  for (const std::string url :
       {"file:///usr/bin/true", "FILE:///home/a/x.desktop", "/usr/share/applications/x.desktop",
        "x.desktop", "javascript:alert(1)", "data:text/html,x", "smb://host/share/x.desktop",
        "sftp://host/x", "vnc://host", "about:blank", "zantrio-unknown:x"}) {
    EXPECT_FALSE(isOpenableUrl(url)) << url;
  }
}

TEST(OpenableUrl, RefusesWhatIsNoAbsoluteUrl) {
  for (const std::string url : {"", "example.test", "//example.test/", "-h", "--version",
                                "https:", "https://", "http:///path", "mailto:", "https"}) {
    EXPECT_FALSE(isOpenableUrl(url)) << url;
  }
}

TEST(OpenableUrl, RefusesCharactersThatNoUrlHas) {
  for (const std::string end :
       {" ", "\n", "\t", "\"", "\\", "`", "|", "<b>", "^", "{}", "\x7F", "\u00E4", "%zz", "%4"}) {
    EXPECT_FALSE(isOpenableUrl("https://example.test/" + end)) << end;
  }
  EXPECT_FALSE(isOpenableUrl(" https://example.test/"));
  EXPECT_FALSE(isOpenableUrl(std::string("https://example.test/\0", 22)));
}

}  // namespace
}  // namespace zantrio
