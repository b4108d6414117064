#include "platform/linux/services/file_permissions_retriever.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/temporary_folder.h"

namespace zantrio {
namespace {

// The permissions of an ordinary user: root passes every check, so a process of "nobody" asks for
// it.
int permissionsForOrdinaryUser(const std::string& path) {
  if (geteuid() != 0) {
    return createFilePermissionsRetriever()->getPermissions(path);
  }
  constexpr int kNobody = 65534;
  constexpr int kFailed = 100;
  const pid_t child = fork();
  if (child == 0) {
    const bool changed = setgid(kNobody) == 0 && setuid(kNobody) == 0;
    _exit(changed ? CFilePermissionsRetrieverLinux().getPermissions(path) : kFailed);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : kFailed;
}

TEST(FilePermissionsRetrieverLinux, AddsUpWhatIsAllowed) {
  const test::TemporaryFolder folder;
  ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
  const std::string path = folder.makeFile("100% \u00E4 file");
  for (const auto& [mode, permissions] : {std::pair{0000, 0}, {0444, 1}, {0222, 2}, {0666, 3}}) {
    ASSERT_EQ(chmod(path.c_str(), static_cast<mode_t>(mode)), 0);
    EXPECT_EQ(permissionsForOrdinaryUser(path), permissions) << std::oct << mode;
  }
}

TEST(FilePermissionsRetrieverLinux, IsZeroForWhatIsMissingOrOutOfReach) {
  const test::TemporaryFolder folder;
  ASSERT_EQ(chmod(folder.path().c_str(), 0000), 0);
  EXPECT_EQ(permissionsForOrdinaryUser(folder.path() + "/gone"), 0);
  EXPECT_EQ(permissionsForOrdinaryUser("/nonexistent/file"), 0);
  EXPECT_EQ(permissionsForOrdinaryUser(""), 0);
  ASSERT_EQ(chmod(folder.path().c_str(), 0700), 0);
}

}  // namespace
}  // namespace zantrio
