#include "fake_login_manager.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <stdexcept>

namespace zt_transfers::test {
namespace {

using namespace std::chrono_literals;

constexpr const char* kName = "org.freedesktop.login1";
constexpr const char* kPath = "/org/freedesktop/login1";
constexpr const char* kInterface = "org.freedesktop.login1.Manager";
constexpr std::uint64_t kTurnMicroseconds = 20'000;

std::string readLine(FILE* stream) {
  std::array<char, 512> line{};
  if (std::fgets(line.data(), line.size(), stream) == nullptr) {
    throw std::runtime_error("dbus-daemon does not start");
  }
  std::string text = line.data();
  text.pop_back();
  return text;
}

void require(int result, const char* what) {
  if (result < 0) {
    throw std::runtime_error(std::string(what) + " failed");
  }
}

bool isHeld(const CUniqueFd& lock) {
  pollfd state{lock.get(), POLLIN, 0};
  return ::poll(&state, 1, 0) == 0;
}

bool comesTrue(const std::function<bool()>& condition) {
  const auto limit = std::chrono::steady_clock::now() + 1min;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > limit) {
      return false;
    }
    std::this_thread::sleep_for(5ms);
  }
  return true;
}

}  // namespace

CFakeLoginManager::CFakeLoginManager() {
  startDaemon();
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address_.c_str(), 1);
  connect();
  thread_ = std::thread([this] { serve(); });
}

CFakeLoginManager::~CFakeLoginManager() {
  stopping_ = true;
  thread_.join();
  sd_bus_close_unref(bus_);
  ::kill(daemonId_, SIGTERM);
  ::pclose(daemon_);
}

void CFakeLoginManager::startDaemon() {
  const auto config = sandbox_.file(
      "bus.conf", "<busconfig><listen>unix:tmpdir=" + sandbox_.folder().string() +
                      "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                      "<allow receive_sender=\"*\"/>"
                      "<allow own=\"*\"/></policy></busconfig>");
  const std::string command =
      "exec dbus-daemon --nofork --print-address=1 --print-pid=1 '--config-file=" +
      config.string() + "' 2>/dev/null";
  daemon_ = ::popen(command.c_str(), "r");
  if (daemon_ == nullptr) {
    throw std::runtime_error("dbus-daemon cannot be started");
  }
  address_ = readLine(daemon_);
  daemonId_ = std::stoi(readLine(daemon_));
}

void CFakeLoginManager::connect() {
  static const std::array<sd_bus_vtable, 3> kTable = {
      sd_bus_vtable SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("Inhibit", "ssss", "h", &CFakeLoginManager::onInhibit,
                    SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_VTABLE_END};
  require(sd_bus_new(&bus_), "sd_bus_new");
  require(sd_bus_set_address(bus_, address_.c_str()), "sd_bus_set_address");
  require(sd_bus_set_bus_client(bus_, 1), "sd_bus_set_bus_client");
  require(sd_bus_negotiate_fds(bus_, 1), "sd_bus_negotiate_fds");
  require(sd_bus_start(bus_), "sd_bus_start");
  require(sd_bus_add_object_vtable(bus_, nullptr, kPath, kInterface, kTable.data(), this),
          "sd_bus_add_object_vtable");
  require(sd_bus_request_name(bus_, kName, 0), "sd_bus_request_name");
}

void CFakeLoginManager::serve() {
  while (!stopping_) {
    while (sd_bus_process(bus_, nullptr) > 0) {
    }
    sd_bus_wait(bus_, kTurnMicroseconds);
  }
}

int CFakeLoginManager::onInhibit(sd_bus_message* message, void* self, sd_bus_error* error) {
  auto& manager = *static_cast<CFakeLoginManager*>(self);
  std::array<const char*, 4> texts{};
  sd_bus_message_read(message, "ssss", &texts[0], &texts[1], &texts[2], &texts[3]);
  const std::lock_guard lock(manager.mutex_);
  manager.calls_.push_back(std::string(texts[0]) + "|" + texts[1] + "|" + texts[2] + "|" +
                           texts[3]);
  if (manager.refused_) {
    return sd_bus_error_set(error, SD_BUS_ERROR_ACCESS_DENIED, "Not for you");
  }
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) {
    return -1;
  }
  manager.locks_.emplace_back(ends[0]);
  const CUniqueFd given(ends[1]);
  return sd_bus_reply_method_return(message, "h", given.get());
}

std::vector<std::string> CFakeLoginManager::calls() {
  const std::lock_guard lock(mutex_);
  return calls_;
}

int CFakeLoginManager::held() {
  const std::lock_guard lock(mutex_);
  int count = 0;
  for (const CUniqueFd& given : locks_) {
    count += isHeld(given) ? 1 : 0;
  }
  return count;
}

bool CFakeLoginManager::waitForHeld(int count) {
  return comesTrue([&] { return held() == count; });
}

}  // namespace zt_transfers::test
