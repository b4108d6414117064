#include "services/openable_url.h"

#include <gtest/gtest.h>

namespace zantrio {
namespace {

TEST(OpenableUrl, AllowsPagesMessagesAndCalls) {
  for (const std::string url :
       {"https://example.test", "HTTP://Example.test:8080/a/b?c=d&e=%C3%A4#f",
        "https://user@[::1]/x", "mailto:a.b+c@example.test?subject=Hello%20you",
        "mailto:?TO=a@b,c@d&cc=e@f&bcc=g@h&body=A%0D%0AB%2C%20C&In-Reply-To=%3Cx@y%3E",
        "tel:+49-30-123", "sms:+123"}) {
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

TEST(OpenableUrl, RefusesALetterThatCouldAttachAFileOrHideAField) {
  for (const std::string rest :
       {"-a", "%2Da", "a@b?attach=/etc/passwd", "a@b?subject=x&Attachment=file:///etc/passwd",
        "a@b?subject=x&amp;attach=/f", "a@b?subject=x;attach=/f", "a@b?body=x?attach=/f",
        "a@b?subject=x#&attach=/f", "a@b?%61ttach=/f", "a@b?insert=/f", "a@b?to=-a",
        "a@b%27,attachment=%27/f", "a@b?cc=c%22,attachment=%22/f", "a@b?body=x,attachment=/f",
        "a@b?subject='x',attachment='/f'", "a@b?subject=x%0D%0ABcc:c@d", "a@b%0A",
        "a@b?body=%00"}) {
    EXPECT_FALSE(isOpenableUrl("mailto:" + rest)) << rest;
  }
  EXPECT_FALSE(isOpenableUrl("tel:-a"));
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
