// The framework, running in the test's process.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "include/cef_app.h"

namespace cef_test {

// The query functions of all documents; they share one cancel function.
inline constexpr char kQuery[] = "testQuery";
inline constexpr char kOtherQuery[] = "otherQuery";

// The application of the tests: installs the two routers in every document.
CefRefPtr<CefApp> makeApp(std::function<void()> onContextInitialized = {});

// The number of documents that are attached at present.
int liveContexts();

// Runs the message loop until the condition holds. False at the timeout.
bool runUntil(const std::function<bool()>& condition,
              std::chrono::milliseconds timeout = std::chrono::seconds(30));

// Runs the loop until the tasks that are queued now have run.
void runQueued();

// A folder for the files of the test program, removed when it ends.
std::string temporaryFolder();

// Writes a file into that folder and returns its URL.
std::string writePage(const std::string& name, const std::string& html);

// Prepares the environment of a test process, which shows nothing on the screen.
void prepareHeadless();

}  // namespace cef_test
