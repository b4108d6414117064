#include "upload/upload_verdict.h"

#include <gmock/gmock.h>

namespace zt_transfers::test {
namespace {

using ::testing::HasSubstr;
using Kind = AttemptOutcome::Kind;

const std::string kMd5 = "d41d8cd98f00b204e9800998ecf8427e";
const std::string kOtherMd5 = "00000000000000000000000000000000";

HttpAnswer answerOf(long status) {
  HttpAnswer answer;
  answer.status = status;
  answer.bytesSent = 10;
  return answer;
}

AttemptOutcome judge(const HttpAnswer& answer, const std::string& md5 = kMd5) {
  return judgeUpload(answer, 10, md5, 0);
}

TEST(JudgeUpload, TakesOnlyAPlainYesForSuccess) {
  for (const long status : {200, 201, 204}) {
    EXPECT_EQ(judge(answerOf(status)).kind, Kind::kDone) << status;
  }
  for (const long status : {202, 206, 300, 307, 400, 403, 404, 409, 412, 417}) {
    EXPECT_EQ(judge(answerOf(status)).kind, Kind::kFinal) << status;
  }
  for (const long status : {408, 429, 500, 502, 503, 504}) {
    EXPECT_EQ(judge(answerOf(status)).kind, Kind::kRetry) << status;
  }
}

TEST(JudgeUpload, RetriesWhenTheDigestDiffers) {
  HttpAnswer answer = answerOf(200);
  answer.headers["etag"] = kOtherMd5;
  EXPECT_EQ(judge(answer).kind, Kind::kRetry);
  EXPECT_EQ(judge(answer, "").kind, Kind::kDone);
  answer.headers["x-amz-server-side-encryption"] = "aws:kms";
  EXPECT_EQ(judge(answer).kind, Kind::kDone);
}

TEST(JudgeUpload, RetriesAnErrorDocumentAndAPartialBody) {
  HttpAnswer document = answerOf(200);
  document.body = "<Error><Code>InternalError</Code></Error>";
  EXPECT_EQ(judge(document).kind, Kind::kRetry);
  EXPECT_THAT(judge(document).reason, HasSubstr("InternalError"));
  HttpAnswer partial = answerOf(200);
  partial.bytesSent = 9;
  EXPECT_EQ(judge(partial).kind, Kind::kRetry);
}

TEST(JudgeUpload, HoldsTheOthersBackWhenServerOrNetworkIsInTrouble) {
  EXPECT_TRUE(judge(answerOf(429)).sharedTrouble);
  EXPECT_TRUE(judge(answerOf(503)).sharedTrouble);
  EXPECT_FALSE(judge(answerOf(500)).sharedTrouble);
  HttpAnswer unreachable;
  unreachable.code = CURLE_COULDNT_CONNECT;
  EXPECT_TRUE(judge(unreachable).sharedTrouble);
  HttpAnswer cut;
  cut.code = CURLE_GOT_NOTHING;
  EXPECT_EQ(judge(cut).kind, Kind::kRetry);
  EXPECT_FALSE(judge(cut).sharedTrouble);
}

TEST(JudgeUpload, TriesNoCertificateTwice) {
  HttpAnswer answer;
  answer.code = CURLE_PEER_FAILED_VERIFICATION;
  EXPECT_EQ(judge(answer).kind, Kind::kFinal);
}

TEST(JudgeUpload, PassesOnWhatTheServerAsksToWait) {
  HttpAnswer answer = answerOf(503);
  answer.headers["retry-after"] = "7";
  EXPECT_EQ(judge(answer).retryAfter, std::chrono::seconds(7));
}

}  // namespace
}  // namespace zt_transfers::test
