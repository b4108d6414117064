#include "upload/upload_verdict.h"

#include <gmock/gmock.h>

namespace zt_transfers::test {
namespace {

using ::testing::HasSubstr;
using Kind = AttemptOutcome::Kind;
using RetryBudget = AttemptOutcome::RetryBudget;
using Scope = AttemptOutcome::Scope;

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
  for (const long status : {202, 206, 300, 307, 400, 403, 404, 407, 409, 412, 417}) {
    EXPECT_EQ(judge(responseOf(status)).kind, Kind::kFinal) << status;
  }
  for (const long status : {408, 421, 423, 425, 429, 500, 501, 502, 503, 504, 522}) {
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

TEST(JudgeUpload, TakesAServersTroubleForTheServersAndNotForTheFiles) {
  HttpResponse busy = responseOf(503);
  busy.headers["retry-after"] = "7";
  EXPECT_EQ(judge(busy).retryAfter, std::chrono::seconds(7));
  for (const long status : {429, 502, 503, 504, 511, 520, 526}) {
    EXPECT_EQ(judge(responseOf(status)).scope, Scope::kOrigin) << status;
    EXPECT_EQ(judge(responseOf(status)).retryBudget, RetryBudget::kFree) << status;
  }
  for (const long status : {500, 501, 507, 527}) {
    EXPECT_EQ(judge(responseOf(status)).scope, Scope::kFile) << status;
    EXPECT_TRUE(judge(responseOf(status)).suspectsOrigin) << status;
  }
}

TEST(JudgeUpload, TriesAgainWhenTheErrorDocumentSaysSoWhateverTheStatus) {
  const auto refused = [](long status, const std::string& code) {
    HttpResponse response = responseOf(status);
    response.body = "<Error><Code>" + code + "</Code></Error>";
    return judge(response);
  };
  for (const char* code : {"RequestTimeout", "RequestTimeTooSkewed", "IncompleteBody", "BadDigest",
                           "OperationAborted", "InternalError", "TemporaryRedirect"}) {
    EXPECT_EQ(refused(400, code).kind, Kind::kRetry) << code;
  }
  EXPECT_EQ(refused(400, "SlowDown").scope, Scope::kOrigin);
  EXPECT_EQ(refused(200, "ServiceUnavailable").scope, Scope::kOrigin);
  EXPECT_EQ(refused(400, "EntityTooLarge").kind, Kind::kFinal);
}

TEST(JudgeUpload, LetsNoFileFailForANetworkOrProxyThatIsAway) {
  struct Case {
    CURLcode code;
    long proxyStatus;
    Kind kind;
    bool origins;
    std::string_view failureCode;
  };
  for (const auto& [code, proxyStatus, kind, origins, failureCode] :
       {Case{CURLE_COULDNT_CONNECT, 0, Kind::kRetry, true, failure::kCannotConnect},
        Case{CURLE_GOT_NOTHING, 0, Kind::kRetry, false, failure::kConnectionLost},
        Case{CURLE_PEER_FAILED_VERIFICATION, 200, Kind::kRetry, true, failure::kNotTrusted},
        Case{CURLE_RECV_ERROR, 503, Kind::kRetry, true, failure::kCannotConnect},
        Case{CURLE_RECV_ERROR, 403, Kind::kRetry, true, failure::kCannotConnect},
        Case{CURLE_RECV_ERROR, 200, Kind::kRetry, false, failure::kConnectionLost},
        Case{CURLE_RECV_ERROR, 407, Kind::kFinal, false, failure::kProxyAuth},
        Case{CURLE_URL_MALFORMAT, 0, Kind::kFinal, false, failure::kBadUrl}}) {
    HttpResponse none;
    none.code = code;
    none.proxyStatus = proxyStatus;
    const AttemptOutcome outcome = judge(none);
    EXPECT_EQ(outcome.kind, kind) << code << " " << proxyStatus;
    EXPECT_EQ(outcome.scope == Scope::kOrigin, origins) << code << " " << proxyStatus;
    EXPECT_EQ(outcome.retryBudget == RetryBudget::kFree, origins) << code << " " << proxyStatus;
    EXPECT_EQ(outcome.code, failureCode) << code << " " << proxyStatus;
  }
}

}  // namespace
}  // namespace zt_transfers::test
