#pragma once

#include <string>
#include <vector>

namespace zantrio {

// What the parts of the user interface that the system shows (menus, dock, services) ask of the
// application. Thread: UI.
class IApplicationCommands {
 public:
  virtual ~IApplicationCommands() = default;

  // Offers items for sending: at once, or when the web application is ready. `paths` are absolute,
  // in UTF-8.
  virtual void openFiles(const std::vector<std::string>& paths) = 0;
  virtual void newMessage() = 0;
  virtual void newShare() = 0;
  // Begins to close the application, which the page may delay.
  virtual void quit() = 0;
};

// Passes the commands on to the browser's client. Without a client there is nothing to move or
// close yet: items are kept for it, and quitting ends the message loop.
class CApplicationCommands : public IApplicationCommands {
 public:
  void openFiles(const std::vector<std::string>& paths) override;
  void newMessage() override;
  void newShare() override;
  void quit() override;
};

}  // namespace zantrio
