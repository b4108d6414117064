// Programs that really crash, and their reports.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/linux/crash/process_threads.h"
#include "support/eventually.h"
#include "support/temporary_folder.h"

namespace zantrio {
namespace {

namespace fs = std::filesystem;
using test::eventually;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;  // the sanitizer sets the exit status
#else
constexpr bool kSanitized = false;
#endif

// The process ids of a process's children.
std::vector<pid_t> childrenOf(pid_t process) {
  const std::string id = std::to_string(process);
  std::ifstream file("/proc/" + id + "/task/" + id + "/children");
  return {std::istream_iterator<pid_t>(file), std::istream_iterator<pid_t>()};
}

bool isThere(pid_t process) {
  return fs::exists("/proc/" + std::to_string(process) + "/exe");
}

class CrashReporterTest : public testing::Test {
 protected:
  // Returns the program's process id.
  pid_t start(const std::string& way) {
    int input[2];
    int output[2];
    EXPECT_EQ(pipe2(input, O_CLOEXEC), 0);
    EXPECT_EQ(pipe2(output, O_CLOEXEC), 0);
    const pid_t program = fork();
    if (program == 0) {
      dup2(input[0], STDIN_FILENO);
      dup2(output[1], STDOUT_FILENO);
      execl(CRASH_PROGRAM, CRASH_PROGRAM, dataFolder().c_str(), way.c_str(), nullptr);
      _exit(127);
    }
    close(input[0]);
    close(output[1]);
    input_ = input[1];
    output_ = output[0];
    return program;
  }

  // Starts the program, waits until it reads its input and returns its watcher.
  pid_t startWaiting(pid_t& program) {
    program = start("wait");
    char line[6];
    EXPECT_EQ(read(output_, line, sizeof line), 6);
    const std::vector<pid_t> children = childrenOf(program);
    EXPECT_THAT(children, SizeIs(1));
    return children.empty() ? -1 : children[0];
  }

  void endInput() {
    close(input_);
    input_ = -1;
  }

  int waitFor(pid_t program) {
    int status = 0;
    EXPECT_EQ(waitpid(program, &status, 0), program);
    return status;
  }

  int run(const std::string& way) { return waitFor(start(way)); }

  void TearDown() override {
    for (const int fd : {input_, output_}) {
      if (fd >= 0) {
        close(fd);
      }
    }
  }

  std::string dataFolder() const { return folder_.path() + "/"; }

  std::vector<std::string> reports() const {
    std::vector<std::string> texts;
    if (fs::exists(dataFolder() + "Crash Reports")) {
      for (const auto& entry : fs::directory_iterator(dataFolder() + "Crash Reports")) {
        std::ifstream file(entry.path());
        texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
      }
    }
    return texts;
  }

  std::string onlyReport() const {
    const std::vector<std::string> all = reports();
    EXPECT_THAT(all, SizeIs(1));
    return all.empty() ? "" : all[0];
  }

  const test::TemporaryFolder folder_;
  int input_ = -1;
  int output_ = -1;
};

struct Crash {
  const char* way;
  int signal;
  const char* head;   // what the report says of the signal
  const char* stack;  // what it shows of the crashed thread
};

class WaysToCrash : public CrashReporterTest, public testing::WithParamInterface<Crash> {};

TEST_P(WaysToCrash, LeaveTheirSignalPlaceAndEnd) {
  const auto& [way, signal, head, stack] = GetParam();
  const int status = run(way);
  EXPECT_NE(status, 0);
  if (!kSanitized) {
    ASSERT_TRUE(WIFSIGNALED(status)) << status;
    EXPECT_EQ(WTERMSIG(status), signal);
  }
  const std::string report = onlyReport();
  EXPECT_THAT(report, HasSubstr("Version: 1.2.3\nSystem:  Test System 4.5\n"));
  EXPECT_THAT(report, HasSubstr(head));
  EXPECT_THAT(report, ContainsRegex("\nFiles:\n(.|\n)*  [0-9a-f]{40} .*/crash_program\n"));
  const auto begin = report.find(", which crashed:\n");
  ASSERT_NE(begin, std::string::npos) << report;
  EXPECT_THAT(report.substr(begin, report.find("\n\n", begin) - begin), ContainsRegex(stack))
      << report;
}

INSTANTIATE_TEST_SUITE_P(
    All, WaysToCrash,
    testing::Values(
        Crash{"fault", SIGSEGV,
              "Signal:  SIGSEGV (Segmentation fault) at 0x0000000000000000, SEGV_MAPERR\n",
              "#0  0x[0-9a-f]{16} .*writeToNowhere.*crash_program.cc:(.|\n)* main "},
        Crash{"second-thread", SIGSEGV, "Signal:  SIGSEGV ", "#0 .*writeToNowhere.*\n.*#1 "},
        Crash{"overflow", SIGSEGV, "Signal:  SIGSEGV ", "recurse(.|\n)*recurse(.|\n)*and more"},
        Crash{"exception", SIGABRT,
              "raised by the process itself\nReason:  uncaught exception std::runtime_error: "
              "nobody catches this\n",
              "throwUncaught(.|\n)* main "}),
    [](const auto& crash) {
      std::string name = crash.param.way;
      std::erase(name, '-');
      return name;
    });

TEST_F(CrashReporterTest, WritesOneReportForTwoThreadsAndNoneForForkedProcesses) {
  EXPECT_EQ(run("forked-child"), 0);
  EXPECT_THAT(reports(), IsEmpty());
  run("two-threads");
  EXPECT_THAT(onlyReport(), HasSubstr("Signal:  SIGSEGV "));
}

TEST_F(CrashReporterTest, KeepsTheTenNewestReportsToItsOwner) {
  const std::string notes = folder_.makeFile("Crash Reports/notes.txt", "mine");
  for (int day = 10; day < 24; ++day) {
    folder_.makeFile("Crash Reports/2024-03-" + std::to_string(day) + "T00-00-00.000Z.txt", "old");
  }
  fs::permissions(dataFolder() + "Crash Reports", fs::perms::all);
  run("fault");
  struct stat status {};
  stat((dataFolder() + "Crash Reports").c_str(), &status);
  EXPECT_EQ(status.st_mode & 0777U, 0700U);
  EXPECT_TRUE(fs::exists(notes));
  EXPECT_FALSE(fs::exists(dataFolder() + "Crash Reports/2024-03-14T00-00-00.000Z.txt"));
  EXPECT_TRUE(fs::exists(dataFolder() + "Crash Reports/2024-03-15T00-00-00.000Z.txt"));
  EXPECT_THAT(reports(), SizeIs(11));  // and the notes
  for (const auto& entry : fs::directory_iterator(dataFolder() + "Crash Reports")) {
    if (entry.path().filename().string().rfind("2024", 0) != 0 && entry.path() != notes) {
      stat(entry.path().c_str(), &status);
      EXPECT_EQ(status.st_mode & 0777U, 0600U);
    }
  }
}

TEST_F(CrashReporterTest, EndsByItsSignalIfNoReportCanBeWritten) {
  folder_.makeFile("Crash Reports", "in the way");
  const int status = run("abort");
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
}

TEST_F(CrashReporterTest, ReportsUnreadableStacksOfATracedProgram) {
  pid_t program = -1;
  startWaiting(program);
  ASSERT_EQ(ptrace(PTRACE_SEIZE, program, nullptr, nullptr), 0);
  kill(program, SIGABRT);
  int status = 0;
  while (waitpid(program, &status, __WALL) == program && WIFSTOPPED(status)) {
    const bool isSignal = status >> 16 == 0;
    ptrace(PTRACE_CONT, program, nullptr, isSignal ? WSTOPSIG(status) : 0);
  }
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
  const std::string report = onlyReport();
  EXPECT_THAT(report, HasSubstr("Signal:  SIGABRT (Aborted), sent by process " +
                                std::to_string(getpid()) + "\n"));
  EXPECT_THAT(report, HasSubstr("\nThe stacks cannot be read: Operation not permitted.\n"));
  EXPECT_THAT(report, HasSubstr("- zt_app.log -"));
}

TEST_F(CrashReporterTest, WatchesWithNothingOpenAndEndsWithTheProgram) {
  pid_t program = -1;
  const pid_t watcher = startWaiting(program);
  ASSERT_TRUE(eventually(
      [&] { return nameThread(watcher, watcher).find("zantrio-watcher") != std::string::npos; }));
  ASSERT_TRUE(eventually([&] {
    const fs::directory_iterator open("/proc/" + std::to_string(watcher) + "/fd");
    return std::distance(begin(open), end(open)) == 4;  // the standard three and its socket
  }));
  EXPECT_EQ(fs::read_symlink("/proc/" + std::to_string(watcher) + "/fd/1"), "/dev/null");
  EXPECT_NE(getsid(watcher), getsid(program));
  endInput();
  EXPECT_EQ(waitFor(program), 0);
  EXPECT_FALSE(isThere(watcher));
  EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(CrashReporterTest, EndsItsWatcherIfTheProgramIsKilled) {
  pid_t program = -1;
  const pid_t watcher = startWaiting(program);
  kill(program, SIGKILL);
  waitFor(program);
  EXPECT_TRUE(eventually([&] { return !isThere(watcher); }));
  EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(CrashReporterTest, SurvivesItsWatcher) {
  pid_t program = -1;
  const pid_t watcher = startWaiting(program);
  kill(watcher, SIGKILL);
  ASSERT_TRUE(eventually([&] { return !isThere(watcher); }));
  EXPECT_TRUE(isThere(program));
  kill(program, SIGABRT);
  const int status = waitFor(program);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
}

}  // namespace
}  // namespace zantrio
