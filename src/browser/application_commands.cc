#include "browser/application_commands.h"

#include "browser/initial_files_container.h"
#include "browser/zt_cef_handler.h"
#include "include/cef_app.h"

namespace zantrio {

void CApplicationCommands::openFiles(const std::vector<std::string>& paths) {
  if (ZtCefHandler* const client = ZtCefHandler::instance()) {
    client->openFiles(paths);
  } else {
    CInitialFilesContainer::instance().append(paths);
  }
}

void CApplicationCommands::newMessage() {
  if (ZtCefHandler* const client = ZtCefHandler::instance()) {
    client->newMessage();
  }
}

void CApplicationCommands::newShare() {
  if (ZtCefHandler* const client = ZtCefHandler::instance()) {
    client->newShare();
  }
}

void CApplicationCommands::quit() {
  ZtCefHandler* const client = ZtCefHandler::instance();
  if (client != nullptr && client->hasBrowsers()) {
    client->CloseAllBrowsers(false);
  } else {
    CefQuitMessageLoop();
  }
}

}  // namespace zantrio
