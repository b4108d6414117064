// The executable as its users start it.

#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <Poco/Process.h>
#include <signal.h>

#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

namespace {

class MainTest : public testing::Test {
 protected:
  MainTest() { folder_.makeFile("web/index.html", "page"); }

  Poco::ProcessHandle launch(const std::string& port) {
    out_ = Poco::Pipe();
    err_ = Poco::Pipe();
    return Poco::Process::launch(ZANTRIO_DEVSERVICE,
                                 {"--port", port, "--data", folder_.path() + "/data", "--web",
                                  folder_.path() + "/web", "--javascript", folder_.path()},
                                 nullptr, &out_, &err_);
  }
  static std::string firstLine(Poco::Pipe& pipe) {
    Poco::PipeInputStream stream(pipe);
    std::string line;
    std::getline(stream, line);
    return line;
  }

  const test::TemporaryFolder folder_;
  Poco::Pipe out_;
  Poco::Pipe err_;
};

}  // namespace

TEST_F(MainTest, SaysWhereItListensAndEndsCleanlyWhenAskedTo) {
  for (const int signal : {SIGTERM, SIGINT}) {
    const Poco::ProcessHandle process = launch("0");
    EXPECT_EQ(firstLine(out_).rfind("listening on http://127.0.0.1:", 0), 0U);
    ::kill(process.id(), signal);
    EXPECT_EQ(process.wait(), 0);
  }
}

TEST_F(MainTest, EndsWithOneLineWhenThePortIsTaken) {
  const Poco::ProcessHandle first = launch("0");
  const std::string line = firstLine(out_);
  const std::string port = line.substr(line.rfind(':') + 1);
  const Poco::ProcessHandle second = launch(port);
  EXPECT_EQ(second.wait(), 1);
  EXPECT_NE(firstLine(err_).find("port " + port), std::string::npos);
  ::kill(first.id(), SIGTERM);
  EXPECT_EQ(first.wait(), 0);
}

}  // namespace zantrio::devservice
