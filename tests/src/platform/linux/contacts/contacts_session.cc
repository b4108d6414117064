#include "src/platform/linux/contacts/contacts_session.h"

#include <Poco/Environment.h>
#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace zantrio::test {
namespace fs = std::filesystem;

namespace {

constexpr const char* kInstalledServices = "/usr/share/dbus-1/services";
constexpr const char* kServicePrefix = "org.gnome.evolution.dataserver.";

std::string contentOf(const fs::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Truncated to 15 characters by the kernel.
std::string nameOf(int process) {
  const std::string line = contentOf("/proc/" + std::to_string(process) + "/comm");
  return line.substr(0, line.find('\n'));
}

// The services activated by the session's bus, found by its home folder in their environment: they
// are reparented.
std::vector<int> servicesWithHome(const std::string& home) {
  const std::string mark = '\0' + ("HOME=" + home) + '\0';
  std::vector<int> found;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const std::string id = entry.path().filename();
    if (id.find_first_not_of("0123456789") != std::string::npos || std::stoi(id) == getpid()) {
      continue;
    }
    if (('\0' + contentOf(entry.path() / "environ")).find(mark) != std::string::npos) {
      found.push_back(std::stoi(id));
    }
  }
  return found;
}

}  // namespace

ContactsSession::ContactsSession(Services services) {
  writeBook("friends", true);
  writeBook("work", true);
  writeBook("hidden", false);
  Poco::Environment::set("HOME", folder_.path());
  for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
    Poco::Environment::set(name, folder_.makeFolder(name));
  }
  const std::string runtime = folder_.makeFolder("XDG_RUNTIME_DIR");
  fs::permissions(runtime, fs::perms::owner_all);
  Poco::Environment::set("XDG_RUNTIME_DIR", runtime);
  Poco::Environment::set("GSETTINGS_BACKEND", "memory");
  startBus(services);
}

ContactsSession::~ContactsSession() {
  endBus();
}

void ContactsSession::writeBook(const std::string& id, bool enabled) const {
  folder_.makeFile("XDG_CONFIG_HOME/evolution/sources/" + id + ".source",
                   "[Data Source]\nDisplayName=" + id +
                       "\nEnabled=" + (enabled ? "true" : "false") +
                       "\nParent=local-stub\n\n[Address Book]\nBackendName=local\n");
}

std::string ContactsSession::writeServices(Services services) const {
  std::string folder = folder_.makeFolder("services");
  for (const auto& entry : fs::directory_iterator(kInstalledServices)) {
    const std::string file = entry.path().filename();
    if (file.rfind(kServicePrefix, 0) != 0) {
      continue;
    }
    if (services == Services::kEds) {
      fs::copy_file(entry.path(), fs::path(folder) / file);
    } else {
      folder_.makeFile("services/" + file, "[D-BUS Service]\nName=" + entry.path().stem().string() +
                                               "\nExec=/bin/sleep 600\n");
    }
  }
  return folder;
}

void ContactsSession::startBus(Services services) {
  const std::string config = folder_.makeFile(
      "bus.conf", "<busconfig><type>session</type><listen>unix:tmpdir=" + folder_.path() +
                      "</listen><servicedir>" + writeServices(services) +
                      "</servicedir><policy context=\"default\">"
                      "<allow send_destination=\"*\" eavesdrop=\"true\"/>"
                      "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
  bus_ = std::make_unique<SessionBus>("--config-file=" + config);
}

void ContactsSession::endBus() {
  if (bus_) {
    const std::vector<int> services = servicesWithHome(folder_.path());
    bus_.reset();
    // Most end with their bus.
    for (const int service : services) {
      kill(service, SIGKILL);
    }
  }
}

void ContactsSession::killBookServers() const {
  int killed = 0;
  for (const int service : servicesWithHome(folder_.path())) {
    if (nameOf(service) == "evolution-addre") {
      killed += kill(service, SIGKILL) == 0 ? 1 : 0;
    }
  }
  if (killed == 0) {
    throw std::runtime_error("there is no server to kill");
  }
}

void ContactsSession::add(const std::string& book, const std::string& cards) const {
  runTool({"add", book}, cards);
}

void ContactsSession::modify(const std::string& book, const std::string& cards) const {
  runTool({"modify", book}, cards);
}

void ContactsSession::remove(const std::string& book, const std::string& id) const {
  runTool({"remove", book, id}, "");
}

void ContactsSession::setEnabled(const std::string& book, bool enabled) const {
  runTool({enabled ? "enable" : "disable", book}, "");
}

void ContactsSession::runTool(const Poco::Process::Args& arguments,
                              const std::string& input) const {
  Poco::Pipe pipe;
  const Poco::ProcessHandle tool =
      Poco::Process::launch(CONTACTS_TOOL, arguments, &pipe, nullptr, nullptr);
  {
    Poco::PipeOutputStream stream(pipe);
    stream << input;
    stream.close();
  }
  if (tool.wait() != 0) {
    throw std::runtime_error("contacts_tool " + arguments[0] + " failed");
  }
}

}  // namespace zantrio::test
