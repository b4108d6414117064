#include <fcntl.h>
#include <gtest/gtest.h>
#include <json/json.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "base/wide_bytes.h"
#include "download_fixture.h"
#include "loop_client.h"
#include "sandbox.h"
#include "upload_fixture.h"

namespace zt_transfers::test {
namespace {

// Where libcurl finds the certificates that this system trusts.
constexpr const char* kTrusted = "/etc/ssl/certs/ca-certificates.crt";

std::unique_ptr<CSandbox> certificates;  // key.pem, cert.pem
std::string whyNot;                      // the tests cannot run here

// A certificate for 127.0.0.1, and a view of the file system for this process alone in which the
// system trusts it. Before the first thread.
void prepare() {
  certificates = std::make_unique<CSandbox>();
  const std::string folder = certificates->folder().string();
  const std::string make =
      "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 "
      "-subj /CN=127.0.0.1 -addext subjectAltName=IP:127.0.0.1 -keyout " +
      folder + "/key.pem -out " + folder + "/cert.pem 2>" + folder + "/openssl.log";
  const int flags = CLONE_NEWNS | (::geteuid() == 0 ? 0 : CLONE_NEWUSER);
  if (std::system(make.c_str()) != 0) {
    whyNot = "openssl made no certificate: " + contentOf(certificates->folder() / "openssl.log");
  } else if (::unshare(flags) != 0 ||
             ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
             ::mount((folder + "/cert.pem").c_str(), kTrusted, nullptr, MS_BIND, nullptr) != 0) {
    whyNot = "no view of the file system of its own can be had";
  }
}

// support/http2_server.cjs, which serves as long as its input is open.
class CNodeServer {
 public:
  explicit CNodeServer(const char* mode) {
    int input[2];
    int output[2];
    if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) {
      throw std::runtime_error("no pipes");
    }
    pid_ = ::fork();
    if (pid_ == 0) {
      ::dup2(input[0], STDIN_FILENO);
      ::dup2(output[1], STDOUT_FILENO);
      const std::string key = (certificates->folder() / "key.pem").string();
      const std::string cert = (certificates->folder() / "cert.pem").string();
      ::execlp(ZANTRIO_NODE, ZANTRIO_NODE, ZANTRIO_HTTP2_SERVER, key.c_str(), cert.c_str(), mode,
               nullptr);
      ::_exit(127);
    }
    ::close(input[0]);
    ::close(output[1]);
    input_ = input[1];
    output_ = ::fdopen(output[0], "r");
    port_ = line();
  }
  ~CNodeServer() { finish(); }

  std::string url(const std::string& path) const { return "https://127.0.0.1:" + port_ + path; }
  // Ends it and gives what it has seen.
  Json::Value finish() {
    Json::Value seen;
    if (pid_ > 0) {
      ::close(input_);
      Json::Reader().parse(line(), seen);
      std::fclose(output_);
      ::waitpid(std::exchange(pid_, -1), nullptr, 0);
    }
    return seen;
  }

 private:
  std::string line() {
    char text[4096] = "";
    const std::string got = std::fgets(text, sizeof text, output_) != nullptr ? text : "";
    return got.substr(0, got.find('\n'));
  }

  pid_t pid_ = -1;
  int input_ = -1;
  std::FILE* output_ = nullptr;
  std::string port_;
};

class Http2 : public CUploadTest {
 protected:
  void SetUp() override {
    if (!whyNot.empty()) {
      GTEST_SKIP() << whyNot;
    }
    CUploadTest::SetUp();
  }
  std::int32_t send(const CNodeServer& node, int files, std::size_t size) {
    std::vector<CUploadManager::FileDesc> all;
    for (int at = 0; at < files; ++at) {
      all.push_back(describe("f" + std::to_string(at), patternOf(size, 1 + at)));
      all.back().url = node.url("/f" + std::to_string(at));
    }
    return upload(all);
  }
};

TEST_F(Http2, CarriesManyFilesAtOnceOverOneConnection) {
  CNodeServer node("new");
  const auto group = send(node, 40, 300'000);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted)) << log();
  CDownloadManager downloads;
  CDownloadRecorder arrived;
  downloads.subscribeToEvents(&arrived);
  const auto target = sandbox.folder() / "target";
  const auto back = downloads.createGroup("bucket", "message", "t", 0, widened(target.string()));
  std::vector<CDownloadManager::FileDownloadDetails> files(10);
  for (std::size_t at = 0; at < files.size(); ++at) {
    files[at].fileId = "f" + std::to_string(at);
    files[at].path = widened(files[at].fileId);
    files[at].size = 300'000;
    files[at].url = node.url("/" + files[at].fileId);
  }
  downloads.queueFiles(back, files);
  downloads.startup();
  ASSERT_TRUE(arrived.waitForGroupState(back, kGroupCompleted)) << log();
  downloads.shutdown();
  EXPECT_EQ(contentOf(target / "f9"), patternOf(300'000, 10));
  const Json::Value seen = node.finish();
  EXPECT_EQ(seen["versions"]["2.0"].asInt(), 50) << seen;
  EXPECT_EQ(seen["connections"].asInt(), 2) << seen;  // one a manager
  EXPECT_GT(seen["mostAtOnce"].asInt(), 1) << seen;
  EXPECT_LE(seen["mostAtOnce"].asInt(), 8) << seen;
}

TEST_F(Http2, IsNotNeeded) {
  CNodeServer node("old");
  const auto group = send(node, 4, 1000);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted)) << log();
  EXPECT_EQ(node.finish()["versions"]["1.1"].asInt(), 4);
}

TEST_F(Http2, UsesNoConnectionAgainThatHasStalled) {
  CNodeServer node("mute");
  CLoopClient client;
  const HttpPatience patience{.response = std::chrono::seconds(2)};
  auto one = client.get(node.url("/one"), patience);
  auto other = client.get(node.url("/other"), patience);
  EXPECT_TRUE(one.get().stalled);
  EXPECT_TRUE(other.get().stalled);
  EXPECT_EQ(client.get(node.url("/again"), patience).get().status, 404);
}

TEST_F(Http2, KeepsToTheLimit) {
  CNodeServer node("new");
  auto configuration = manager.getConfiguration();
  configuration.throttleBytesPerSecond = 2'000'000;
  manager.setConfiguration(configuration);
  const auto begin = std::chrono::steady_clock::now();
  const auto group = send(node, 8, 500'000);
  ASSERT_TRUE(recorder.waitForGroupState(group, kGroupCompleted)) << log();
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(1800));
}

TEST_F(Http2, KeepsToTheLimitOnTheWireAndCarriesLargeBodiesOneByOne) {
  constexpr std::size_t kSize = 40'000'000;
  CNodeServer node("new");
  CLoopClient client;
  ASSERT_EQ(client.put(node.url("/large"), std::string(kSize, 'c')).get().status, 200);
  CDownloadManager downloads;
  CDownloadRecorder arrived;
  downloads.subscribeToEvents(&arrived);
  auto configuration = downloads.getConfiguration();
  configuration.throttleBytesPerSecond = 1'000'000;
  downloads.setConfiguration(configuration);
  const auto target = widened((sandbox.folder() / "target").string());
  const auto group = downloads.createGroup("bucket", "message", "t", 0, target);
  CDownloadManager::FileDownloadDetails file;
  file.fileId = "large";
  file.path = L"large";
  file.size = kSize;
  file.url = node.url("/large");
  downloads.queueFiles(group, {file});
  downloads.startup();
  EXPECT_TRUE(arrived.waitForGroup(
      group, [](const auto& state) { return state.bytesTransferred > 2'000'000; }));
  downloads.shutdown();
  const Json::Value seen = node.finish();
  EXPECT_LT(seen["given"].asUInt64(), 25'000'000U) << "what queues of the system hold";
  EXPECT_EQ(seen["versions"]["1.1"].asInt(), 2) << seen;
}

}  // namespace
}  // namespace zt_transfers::test

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  zt_transfers::test::prepare();
  const int failed = RUN_ALL_TESTS();
  zt_transfers::test::certificates.reset();
  return failed;
}
