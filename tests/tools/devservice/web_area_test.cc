#include "devservice/web_area.h"

#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

using WebAreaTest = ServiceTest;

TEST_F(WebAreaTest, NeverLeavesItsFolders) {
  folder_.makeLink("web/link.txt", "../secret.txt");
  for (const char* path :
       {"/app/../secret.txt", "/app/%2e%2e/secret.txt", "/app/js/..%2f..%2fsecret.txt",
        "/app/%2Fetc%2Fpasswd", "/app//etc/passwd", "/app/link.txt", "/app/js", "/app/lib",
        "/app/lib/..", "/app/lib/...min.js", "/app/missing.js"}) {
    const Response refused = request("GET", path);
    EXPECT_EQ(refused.status, 404) << path;
    EXPECT_EQ(refused.code(), "not_found") << path;
  }
  EXPECT_EQ(request("GET", "/app/%zz").status, 400);
  EXPECT_EQ(request("PUT", "/app/index.html", "new").status, 405);
}

}  // namespace zantrio::devservice
