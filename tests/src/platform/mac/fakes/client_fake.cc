// Linked instead of the client and the framework.
#include "src/platform/mac/fakes/client_fake.h"

#include <stdexcept>

#include "app/browser_process.h"
#include "app/sub_process.h"
#include "include/cef_sandbox_mac.h"
#include "include/cef_task.h"
#include "include/wrapper/cef_library_loader.h"
#include "src/platform/mac/fakes/calls.h"

namespace zantrio {
namespace mac_test {
namespace {

int runAs(const std::string& process) {
  recordCall(process);
  if (!client().failure.empty()) {
    throw std::runtime_error(client().failure);
  }
  return client().exitCode;
}

}  // namespace

ClientRecord& client() {
  static ClientRecord fake;
  return fake;
}

std::string textThrownBy(const std::function<void()>& call) {
  try {
    call();
    return {};
  } catch (const std::exception& exception) {
    return exception.what();
  }
}

void RecordingCommands::openFiles(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    recordCall("open " + path);
  }
}

void RecordingCommands::newMessage() {
  recordCall("new message");
}

void RecordingCommands::newShare() {
  recordCall("new share");
}

void RecordingCommands::quit() {
  recordCall("quit");
}

}  // namespace mac_test

using mac_test::client;

void CApplicationCommands::openFiles(const std::vector<std::string>& /*paths*/) {}

void CApplicationCommands::newMessage() {}

void CApplicationCommands::newShare() {}

void CApplicationCommands::quit() {
  mac_test::recordCall("quit");
}

BrowserProcess::BrowserProcess(int argc, char** argv) : arguments_(argc, argv) {
  client().arguments.assign(argv, argv + argc);
}

int BrowserProcess::run() {
  return mac_test::runAs("browser process");
}

int runSubProcess(int argc, char** argv) {
  client().arguments.assign(argv, argv + argc);
  return mac_test::runAs("sub-process");
}

}  // namespace zantrio

using zantrio::mac_test::recordCall;

CefScopedLibraryLoader::CefScopedLibraryLoader() = default;

CefScopedLibraryLoader::~CefScopedLibraryLoader() {
  recordCall("unload framework");
}

bool CefScopedLibraryLoader::LoadInMain() {
  recordCall("LoadInMain");
  return zantrio::mac_test::client().loadsFramework;
}

bool CefScopedLibraryLoader::LoadInHelper() {
  recordCall("LoadInHelper");
  return zantrio::mac_test::client().loadsFramework;
}

CefScopedSandboxContext::CefScopedSandboxContext() = default;

CefScopedSandboxContext::~CefScopedSandboxContext() {
  recordCall("leave sandbox");
}

bool CefScopedSandboxContext::Initialize(int argc, char** argv) {
  recordCall("enter sandbox " + std::to_string(argc) + " " + argv[0]);
  return zantrio::mac_test::client().entersSandbox;
}

// Tests have one thread.
bool CefCurrentlyOn(CefThreadId thread) {
  return thread == TID_UI;
}
