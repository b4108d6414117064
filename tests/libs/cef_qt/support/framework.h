// The framework, running in the test's process.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "include/cef_app.h"

namespace cef_test {

// Query functions that every document of the tests gets, with one cancel function.
inline constexpr char kQuery[] = "testQuery";
inline constexpr char kOtherQuery[] = "otherQuery";

// The application of the tests: installs the two routers in every document.
CefRefPtr<CefApp> makeApp(std::function<void()> onContextInitialized = {});

// Documents that the render side knows at present.
int liveContexts();

// Runs the message loop until the condition holds; false when it does not within the limit.
bool runUntil(const std::function<bool()>& condition,
              std::chrono::milliseconds limit = std::chrono::seconds(30));

// Runs the loop until everything that is queued now was done.
void runQueued();

// A folder for the test program's files, removed at its end.
std::string temporaryFolder();

// Writes a file into it and gives its URL.
std::string writePage(const std::string& name, const std::string& html);

// Settings and environment that every test process uses: nothing on the screen.
void prepareHeadless();

}  // namespace cef_test
