// The executable as users start it.

#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <Poco/Process.h>
#include <signal.h>

#include "tools/devservice/service_fixture.h"

namespace zantrio::devservice {

namespace {

Poco::ProcessHandle launch(const std::string& folder, const std::string& port, Poco::Pipe& out,
                           Poco::Pipe& err) {
  return Poco::Process::launch(ZANTRIO_DEVSERVICE,
                               {"--port", port, "--data", folder + "/data", "--web",
                                folder + "/web", "--javascript", folder},
                               nullptr, &out, &err);
}

std::string firstLine(Poco::Pipe& pipe) {
  Poco::PipeInputStream stream(pipe);
  std::string line;
  std::getline(stream, line);
  return line;
}

}  // namespace

TEST(Main, PrintsItsUrlRefusesAUsedPortAndEndsCleanlyOnASignal) {
  const test::TemporaryFolder folder;
  folder.makeFile("web/index.html", "page");
  for (const int signal : {SIGTERM, SIGINT}) {
    Poco::Pipe out, err, secondOut, secondErr;
    const Poco::ProcessHandle first = launch(folder.path(), "0", out, err);
    const std::string line = firstLine(out);
    EXPECT_EQ(line.rfind("listening on http://127.0.0.1:", 0), 0U) << line;
    const std::string port = line.substr(line.rfind(':') + 1);
    EXPECT_EQ(launch(folder.path(), port, secondOut, secondErr).wait(), 1);
    EXPECT_NE(firstLine(secondErr).find("port " + port), std::string::npos);
    ::kill(first.id(), signal);
    EXPECT_EQ(first.wait(), 0);
  }
}

}  // namespace zantrio::devservice
