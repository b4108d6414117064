#pragma once

#include <string>
#include <vector>

namespace zantrio {

// Commands of the system's user interface (menus, dock, services) to the application. Thread: UI.
class IApplicationCommands {
 public:
  virtual ~IApplicationCommands() = default;

  // Opens items for sending, now or when the web application is ready. `paths` are absolute, in
  // UTF-8.
  virtual void openFiles(const std::vector<std::string>& paths) = 0;
  virtual void newMessage() = 0;
  virtual void newShare() = 0;
  // Starts closing the application, which the page may delay.
  virtual void quit() = 0;
};

// Forwards the commands to the browser client. Without one, items are kept for it, quitting ends
// the message loop, and the other commands are ignored.
class CApplicationCommands : public IApplicationCommands {
 public:
  void openFiles(const std::vector<std::string>& paths) override;
  void newMessage() override;
  void newShare() override;
  void quit() override;
};

}  // namespace zantrio
