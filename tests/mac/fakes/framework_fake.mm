#include "mac/fakes/framework_fake.h"

#include "include/cef_sandbox_mac.h"
#include "include/cef_task.h"
#include "include/wrapper/cef_library_loader.h"
#include "mac/fakes/calls.h"

namespace zantrio::mac_test {

FrameworkFake& framework() {
  static FrameworkFake fake;
  return fake;
}

}  // namespace zantrio::mac_test

using namespace zantrio::mac_test;

CefScopedLibraryLoader::CefScopedLibraryLoader() = default;

CefScopedLibraryLoader::~CefScopedLibraryLoader() {
  recordCall("unload framework");
}

bool CefScopedLibraryLoader::LoadInMain() {
  recordCall("LoadInMain");
  return framework().loads;
}

bool CefScopedLibraryLoader::LoadInHelper() {
  recordCall("LoadInHelper");
  return framework().loads;
}

CefScopedSandboxContext::CefScopedSandboxContext() = default;

CefScopedSandboxContext::~CefScopedSandboxContext() {
  recordCall("leave sandbox");
}

bool CefScopedSandboxContext::Initialize(int argc, char** argv) {
  recordCall("enter sandbox " + std::to_string(argc) + " " + argv[0]);
  return framework().entersSandbox;
}

// Tests have one thread.
bool CefCurrentlyOn(CefThreadId thread) {
  return thread == TID_UI;
}
