#include "engine/fault_table.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace zt_transfers::test {
namespace {

using Kind = AttemptOutcome::Kind;
using Scope = AttemptOutcome::Scope;
using RetryBudget = AttemptOutcome::RetryBudget;

TEST(FaultTable, EndsAFileOnlyByWhatSomebodyMustChange) {
  for (const FileRole role : {FileRole::kTarget, FileRole::kSource}) {
    for (const int error :
         {EACCES, EPERM, EINVAL, ENAMETOOLONG, ELOOP, ENOTDIR, EISDIR, EFBIG, EILSEQ, ENOENT}) {
      EXPECT_EQ(outcomeOfErrno(error, role, "").kind, Kind::kFinal) << error;
    }
    EXPECT_EQ(outcomeOfErrno(EUCLEAN, role, "").kind, Kind::kRetry) << "an unknown one";
  }
}

TEST(FaultTable, LetsAllFilesOfADiskWaitForItWithoutUsingUpRetries) {
  for (const FileRole role : {FileRole::kTarget, FileRole::kSource}) {
    for (const int error : {ETIMEDOUT, EHOSTDOWN, ECONNRESET, ESTALE, EROFS, EAGAIN, EBUSY, ENODEV,
                            EMFILE, ENFILE, ENOMEM}) {
      const AttemptOutcome outcome = outcomeOfErrno(error, role, "");
      EXPECT_EQ(outcome.kind, Kind::kRetry) << error;
      EXPECT_EQ(outcome.scope, Scope::kFolder) << error;
      EXPECT_EQ(outcome.retryBudget, RetryBudget::kFree) << error;
    }
    EXPECT_EQ(outcomeOfMissingFolder(role, "").scope, Scope::kFolder);
  }
  EXPECT_EQ(outcomeOfErrno(ENOSPC, FileRole::kTarget, "").code, failure::kDiskFull);
  // One file's bytes may be damaged for good; the others need not wait for them.
  EXPECT_EQ(outcomeOfErrno(EIO, FileRole::kSource, "").scope, Scope::kFile);
}

}  // namespace
}  // namespace zt_transfers::test
