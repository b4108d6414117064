#include "base/file_url.h"

#include <gtest/gtest.h>

namespace zt_transfers::test {
namespace {

TEST(PathOfFileUrl, DecodesToBytesAsTheyStand) {
  EXPECT_EQ(pathOfFileUrl("file:///home/a%20b/100%25"), "/home/a b/100%");
  EXPECT_EQ(pathOfFileUrl("file:///%C3%BC%ff"), "/\xC3\xBC\xFF");
  EXPECT_EQ(pathOfFileUrl("FILE://localhost/x"), "/x");
  EXPECT_EQ(pathOfFileUrl("file:///not escaped \xC3\xBC+?#"), "/not escaped \xC3\xBC+?#");
}

TEST(PathOfFileUrl, RefusesWhatNamesNoFileOfThisMachine) {
  for (const char* url :
       {"", "/plain/path", "http://host/x", "file:/x", "file://host/x", "file://localhostile/x",
        "file://x", "file:///a%", "file:///a%2", "file:///a%zz", "file:///a%00b"}) {
    EXPECT_FALSE(pathOfFileUrl(url).has_value()) << url;
  }
}

}  // namespace
}  // namespace zt_transfers::test
