#include "upload/upload_verdict.h"

#include <gmock/gmock.h>

namespace zt_transfers::test {
namespace {

using ::testing::HasSubstr;
using Kind = AttemptOutcome::Kind;

const std::string kMd5 = "d41d8cd98f00b204e9800998ecf8427e";
const std::string kOtherMd5 = "00000000000000000000000000000000";

HttpResponse responseOf(long status) {
  HttpResponse response;
  response.status = status;
  response.bytesSent = 10;
  return response;
}

AttemptOutcome judge(const HttpResponse& response, const std::string& md5 = kMd5) {
  return judgeUpload(response, 10, md5, 0);
}

TEST(JudgeUpload, TakesOnlyAPlainYesForSuccess) {
  for (const long status : {200, 201, 204}) {
    EXPECT_EQ(judge(responseOf(status)).kind, Kind::kDone) << status;
  }
  for (const long status : {202, 206, 300, 307, 400, 403, 404, 409, 412, 417}) {
    EXPECT_EQ(judge(responseOf(status)).kind, Kind::kFinal) << status;
  }
  for (const long status : {408, 429, 500, 502, 503, 504}) {
    EXPECT_EQ(judge(responseOf(status)).kind, Kind::kRetry) << status;
  }
}

TEST(JudgeUpload, RetriesWhenTheDigestDiffers) {
  HttpResponse response = responseOf(200);
  response.headers["etag"] = kOtherMd5;
  EXPECT_EQ(judge(response).kind, Kind::kRetry);
  EXPECT_EQ(judge(response, "").kind, Kind::kDone);
  response.headers["x-amz-server-side-encryption"] = "aws:kms";
  EXPECT_EQ(judge(response).kind, Kind::kDone);
}

TEST(JudgeUpload, RetriesAnErrorDocumentAndAPartialBody) {
  HttpResponse document = responseOf(200);
  document.body = "<Error><Code>InternalError</Code></Error>";
  EXPECT_EQ(judge(document).kind, Kind::kRetry);
  EXPECT_THAT(judge(document).reason, HasSubstr("InternalError"));
  HttpResponse partial = responseOf(200);
  partial.bytesSent = 9;
  EXPECT_EQ(judge(partial).kind, Kind::kRetry);
}

TEST(JudgeUpload, DelaysTheOtherFilesDuringAnOutageOnly) {
  HttpResponse busy = responseOf(503);
  busy.headers["retry-after"] = "7";
  EXPECT_EQ(judge(busy).scope, AttemptOutcome::Scope::kOrigin);
  EXPECT_EQ(judge(busy).retryAfter, std::chrono::seconds(7));
  EXPECT_EQ(judge(responseOf(429)).scope, AttemptOutcome::Scope::kOrigin);
  EXPECT_EQ(judge(responseOf(500)).scope, AttemptOutcome::Scope::kFile);
  struct Case {
    CURLcode code;
    Kind kind;
    bool outage;
  };
  for (const auto& [code, kind, outage] :
       {Case{CURLE_COULDNT_CONNECT, Kind::kRetry, true},
        Case{CURLE_GOT_NOTHING, Kind::kRetry, false},
        Case{CURLE_PEER_FAILED_VERIFICATION, Kind::kFinal, false}}) {
    HttpResponse none;
    none.code = code;
    EXPECT_EQ(judge(none).kind, kind) << code;
    EXPECT_EQ(judge(none).scope == AttemptOutcome::Scope::kOrigin, outage) << code;
  }
}

}  // namespace
}  // namespace zt_transfers::test
