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

TEST(JudgeUpload, HoldsTheOthersBackWhenServerOrNetworkIsInTrouble) {
  EXPECT_TRUE(judge(responseOf(429)).sharedTrouble);
  EXPECT_TRUE(judge(responseOf(503)).sharedTrouble);
  EXPECT_FALSE(judge(responseOf(500)).sharedTrouble);
  HttpResponse unreachable;
  unreachable.code = CURLE_COULDNT_CONNECT;
  EXPECT_TRUE(judge(unreachable).sharedTrouble);
  HttpResponse cut;
  cut.code = CURLE_GOT_NOTHING;
  EXPECT_EQ(judge(cut).kind, Kind::kRetry);
  EXPECT_FALSE(judge(cut).sharedTrouble);
}

TEST(JudgeUpload, TriesNoCertificateTwice) {
  HttpResponse response;
  response.code = CURLE_PEER_FAILED_VERIFICATION;
  EXPECT_EQ(judge(response).kind, Kind::kFinal);
}

TEST(JudgeUpload, PassesOnWhatTheServerAsksToWait) {
  HttpResponse response = responseOf(503);
  response.headers["retry-after"] = "7";
  EXPECT_EQ(judge(response).retryAfter, std::chrono::seconds(7));
}

}  // namespace
}  // namespace zt_transfers::test
