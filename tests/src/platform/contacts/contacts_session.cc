#include "src/platform/contacts/contacts_session.h"

#include <Poco/Environment.h>
#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace zantrio::test {
namespace fs = std::filesystem;

namespace {

constexpr const char* kInstalledServices = "/usr/share/dbus-1/services";
constexpr const char* kServicePrefix = "org.gnome.evolution.dataserver.";

struct ProcessInfo {
  int parent = 0;
  std::string name;
};

// The name is cut off by the system after 15 characters, and may hold anything but a ')'.
ProcessInfo readStat(const fs::path& folder) {
  std::ifstream file(folder / "stat");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const std::size_t begin = text.find('(');
  const std::size_t end = text.rfind(')');
  if (begin == std::string::npos || end == std::string::npos) {
    return {};
  }
  ProcessInfo info;
  info.name = text.substr(begin + 1, end - begin - 1);
  char state = 0;
  std::istringstream(text.substr(end + 1)) >> state >> info.parent;
  return info;
}

std::map<int, ProcessInfo> readProcesses() {
  std::map<int, ProcessInfo> processes;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") == std::string::npos) {
      processes[std::stoi(name)] = readStat(entry.path());
    }
  }
  return processes;
}

bool descendsFrom(const std::map<int, ProcessInfo>& processes, int id, int ancestor) {
  for (auto found = processes.find(id); found != processes.end();
       found = processes.find(found->second.parent)) {
    if (found->second.parent == ancestor) {
      return true;
    }
  }
  return false;
}

std::vector<int> descendants(int ancestor) {
  const std::map<int, ProcessInfo> processes = readProcesses();
  std::vector<int> found;
  for (const auto& [id, info] : processes) {
    if (descendsFrom(processes, id, ancestor)) {
      found.push_back(id);
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
    if (file.rfind(kServicePrefix, 0) != 0 || services == Services::kNone) {
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
  Poco::Pipe output;
  bus_ = std::make_unique<Poco::ProcessHandle>(Poco::Process::launch(
      "dbus-daemon", {"--config-file=" + config, "--nofork", "--print-address=1"}, nullptr, &output,
      nullptr));
  Poco::PipeInputStream stream(output);
  std::string address;
  if (!std::getline(stream, address)) {
    throw std::runtime_error("dbus-daemon does not start");
  }
  Poco::Environment::set("DBUS_SESSION_BUS_ADDRESS", address);
}

void ContactsSession::endBus() {
  if (bus_) {
    const std::vector<int> services = descendants(bus_->id());
    kill(bus_->id(), SIGTERM);
    bus_->wait();
    bus_.reset();
    // Most end with their bus.
    for (const int service : services) {
      kill(service, SIGKILL);
    }
  }
}

void ContactsSession::killBookServers() const {
  int killed = 0;
  for (const int service : descendants(bus_->id())) {
    if (readStat("/proc/" + std::to_string(service)).name == "evolution-addre") {
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
