// Start, restart and end of whole processes, with the program cef_probe.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <system_error>
#include <vector>

#include "support/framework.h"
#include "support/http_service.h"

namespace cef_test {
namespace {

namespace fs = std::filesystem;

// A running cef_probe with its output, standard error included.
class Probe {
 public:
  explicit Probe(std::vector<std::string> arguments, const std::string& directory = "/") {
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    arguments.insert(arguments.begin(), CEF_PROBE);
    std::vector<char*> argv;
    for (std::string& word : arguments) {
      argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
      dup2(ends[1], STDOUT_FILENO);
      dup2(ends[1], STDERR_FILENO);
      if (chdir(directory.c_str()) == 0) {
        execv(argv[0], argv.data());
      }
      _exit(126);
    }
    close(ends[1]);
    output_ = ends[0];
  }
  ~Probe() {
    if (pid_ > 0) {
      signal(SIGKILL);
      wait();
    }
    close(output_);
  }

  // Reads until the text appears. False at the end of the output.
  bool waitFor(const std::string& text) {
    char buffer[4096];
    while (read_.find(text) == std::string::npos) {
      const ssize_t length = read(output_, buffer, sizeof buffer);
      if (length <= 0) {
        return false;
      }
      read_.append(buffer, static_cast<std::size_t>(length));
    }
    return true;
  }
  const std::string& output() const { return read_; }
  void signal(int number) { kill(pid_, number); }
  // The exit code, −1 when it was killed.
  int wait() {
    waitFor("(never printed)");
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t pid_ = -1;
  int output_ = -1;
  std::string read_;
};

struct Process : testing::Test {
  Process() { prepareHeadless(); }

  std::string freshFolder() {
    static int folders = 0;
    const std::string path = temporaryFolder() + "/profile" + std::to_string(++folders);
    fs::create_directories(path);
    return path;
  }
};

void sendPage(Poco::Net::HTTPServerRequest& /*request*/, Poco::Net::HTTPServerResponse& response) {
  response.setContentType("text/html");
  response.set("Set-Cookie", "kept=1; Max-Age=3600");
  response.send() << "<!DOCTYPE html><title>page</title>";
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(Process, RunsOnceForACachePathAndAgainAfterTheHolderWasKilled) {
  const std::string folder = freshFolder();
  Probe first({"--root=" + folder, "--wait"});
  ASSERT_TRUE(first.waitFor("ready")) << first.output();
  Probe second({"--root=" + folder, "--wait", "an argument"}, "/tmp");
  EXPECT_EQ(second.wait(), CEF_RESULT_CODE_NORMAL_EXIT_PROCESS_NOTIFIED);
  EXPECT_NE(second.output().find("not initialized"), std::string::npos);
  EXPECT_TRUE(first.waitFor("relaunch in /tmp: an argument")) << first.output();
  first.signal(SIGKILL);
  EXPECT_EQ(first.wait(), -1);
  Probe third({"--root=" + folder, "--wait"});
  ASSERT_TRUE(third.waitFor("ready")) << third.output();
  Probe fourth({"--root=" + folder, "--wait", "again"});
  EXPECT_TRUE(third.waitFor("relaunch in /: again")) << third.output();
}

// A connection to the socket in an open folder, which needs no right to pass the folders above it.
int connectIn(int folder) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/instance.socket",
                folder);
  const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  EXPECT_EQ(connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0)
      << std::generic_category().message(errno);
  return connection;
}

TEST_F(Process, IsReachedByItsUserAloneAndNotHeldUpBySilentConnections) {
  const std::string folder = freshFolder();
  const mode_t before = umask(0);
  Probe first({"--root=" + folder, "--wait"});
  umask(before);
  ASSERT_TRUE(first.waitFor("ready")) << first.output();
  EXPECT_EQ(fs::status(folder + "/instance.socket").permissions(), fs::perms(0600));
  const int open = ::open(folder.c_str(), O_PATH | O_CLOEXEC);
  std::vector<int> silent;
  for (int count = 0; count < 3; ++count) {
    silent.push_back(connectIn(open));
  }
  close(open);
  Probe second({"--root=" + folder, "--wait", "prompt"});
  EXPECT_TRUE(first.waitFor("relaunch in /: prompt")) << first.output();
  for (const int connection : silent) {
    char byte = 0;
    EXPECT_EQ(recv(connection, &byte, 1, MSG_DONTWAIT), -1) << "the holder gave it up first";
    close(connection);
  }
}

TEST_F(Process, HearsNoOtherUser) {
  if (getuid() != 0) {
    GTEST_SKIP() << "needs the right to become another user";
  }
  const std::string folder = freshFolder();
  Probe first({"--root=" + folder, "--wait"});
  ASSERT_TRUE(first.waitFor("ready")) << first.output();
  fs::permissions(folder, fs::perms(0755));
  fs::permissions(folder + "/instance.socket", fs::perms(0666));
  constexpr uid_t kNobody = 65534;
  const int open = ::open(folder.c_str(), O_PATH | O_CLOEXEC);
  ASSERT_EQ(seteuid(kNobody), 0);
  const int connection = connectIn(open);
  ASSERT_EQ(seteuid(0), 0);
  close(open);
  const std::string message("/\0probe\0--foreign\0", 19);
  send(connection, message.data(), message.size(), MSG_NOSIGNAL);
  shutdown(connection, SHUT_WR);
  char answer = 0;
  EXPECT_LE(recv(connection, &answer, 1, 0), 0);
  close(connection);
  Probe second({"--root=" + folder, "--wait", "own"});
  EXPECT_TRUE(first.waitFor("relaunch in /: own")) << first.output();
  EXPECT_EQ(first.output().find("foreign"), std::string::npos);
}

TEST_F(Process, KeepsItsDataInMemoryWhenTheCachePathCannotBeUsed) {
  const std::string file = temporaryFolder() + "/a file";
  std::ofstream(file) << "x";
  const zantrio::test::HttpService server(sendPage);
  Probe probe({"--root=" + file + "/below", "--url=" + server.url("/"), "--log=" + file + "/log"});
  EXPECT_EQ(probe.wait(), 0);
  EXPECT_NE(probe.output().find("keeps its data in memory"), std::string::npos) << probe.output();
  EXPECT_NE(probe.output().find("going on without it"), std::string::npos);
  EXPECT_NE(probe.output().find("loaded"), std::string::npos);

  Probe outside(
      {"--root=" + freshFolder(), "--cache=" + freshFolder(), "--url=" + server.url("/")});
  EXPECT_EQ(outside.wait(), 0);
  EXPECT_NE(outside.output().find("not below the root cache path"), std::string::npos);
}

TEST_F(Process, WritesThePagesConsoleToTheBrowserLogBySeverity) {
  const std::string log = freshFolder() + "/deep/browser.log";
  const std::string url = writePage("console.html",
                                    "<script>console.log('an info'); console.warn('a warning');"
                                    "console.error('an error');</script>");
  setenv("QT_PLUGIN_PATH", "/nonexistent", 1);
  Probe all({"--url=" + url, "--log=" + log});
  unsetenv("QT_PLUGIN_PATH");
  EXPECT_EQ(all.wait(), 0) << all.output();
  const std::string text = contentsOf(log);
  EXPECT_NE(text.find(":INFO:CONSOLE(1)] \"an info\", source: " + url + " (1)\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find(":WARNING:CONSOLE(1)] \"a warning\""), std::string::npos);
  EXPECT_NE(text.find("QT_PLUGIN_PATH is set in the environment"), std::string::npos) << text;
  EXPECT_EQ(text.find("LD_PRELOAD is set"), std::string::npos);
  if (geteuid() == 0) {
    EXPECT_NE(text.find("without its sandbox"), std::string::npos);
  }
  fs::remove(log);
  Probe errors({"--url=" + url, "--log=" + log, "--severity=4"});
  EXPECT_EQ(errors.wait(), 0);
  EXPECT_EQ(contentsOf(log).find("a warning"), std::string::npos);
  EXPECT_NE(contentsOf(log).find("an error"), std::string::npos);
}

TEST_F(Process, SendsTheUserAgentAndKeepsCookiesInTheCachePath) {
  const std::string folder = freshFolder();
  std::mutex mutex;
  std::vector<std::pair<std::string, std::string>> asked;  // user agents and cookies
  {
    const zantrio::test::HttpService server([&](auto& request, auto& response) {
      if (request.getURI() == "/") {
        const std::lock_guard lock(mutex);
        asked.emplace_back(request.get("User-Agent"), request.get("Cookie", "none"));
      }
      sendPage(request, response);
    });
    for (int run = 0; run < 2; ++run) {
      Probe probe({"--root=" + folder, "--agent=Test/1.0\xC3\xBC x", "--url=" + server.url("/")});
      EXPECT_EQ(probe.wait(), 0) << probe.output();
    }
  }
  ASSERT_EQ(asked.size(), 2U);
  EXPECT_EQ(asked[0], (std::pair<std::string, std::string>("Test/1.0 x", "none")));
  EXPECT_EQ(asked[1], (std::pair<std::string, std::string>("Test/1.0 x", "kept=1")));
}

TEST_F(Process, RunsTheGivenExecutableAsItsSubProcessAndGivesItsExitCode) {
  const std::string marker = freshFolder() + "/started";
  setenv("CEF_PROBE_MARKER", marker.c_str(), 1);
  Probe probe({"--subprocess=" CEF_PROBE, "--url=" + writePage("sub.html", "x")});
  EXPECT_EQ(probe.wait(), 0) << probe.output();
  unsetenv("CEF_PROBE_MARKER");
  EXPECT_NE(contentsOf(marker).find("--type=renderer"), std::string::npos);

  Probe browser({"--execute-only"});
  EXPECT_EQ(browser.wait(), 77) << browser.output();
  setenv("CEF_QT_WEBENGINE_PROCESS", "/bin/false", 1);
  Probe file({"--execute-only", "--", "--type=renderer"});
  EXPECT_EQ(file.wait(), 77) << "the name of a file";
  Probe sub({"--type=renderer"});
  unsetenv("CEF_QT_WEBENGINE_PROCESS");
  EXPECT_EQ(sub.wait(), 1) << sub.output();
}

TEST_F(Process, ReleasesWaitingTasksAtShutdownAndTakesNoMore) {
  Probe probe({"--shutdown"});
  EXPECT_EQ(probe.wait(), 0);
  EXPECT_NE(probe.output().find("released 7 of 7, posting fails"), std::string::npos)
      << probe.output();
}

}  // namespace
}  // namespace cef_test
