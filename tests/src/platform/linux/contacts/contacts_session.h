#pragma once

#include <Poco/Process.h>

#include <memory>
#include <string>

#include "support/server_process.h"
#include "support/temporary_folder.h"

namespace zantrio::test {

// A session bus with its own home folder, which activates a real Evolution Data Server; this
// process uses it while the object lives. Has the address books "friends", "work" and the disabled
// "hidden".
class ContactsSession {
 public:
  enum class Services { kEds, kHanging };

  explicit ContactsSession(Services services = Services::kEds);
  ContactsSession(const ContactsSession&) = delete;
  ContactsSession& operator=(const ContactsSession&) = delete;
  ~ContactsSession();

  // Change contacts from another program; throw on failure.
  void add(const std::string& book, const std::string& cards) const;
  void modify(const std::string& book, const std::string& cards) const;
  void remove(const std::string& book, const std::string& id) const;
  void setEnabled(const std::string& book, bool enabled) const;

  // Ends the bus, and with it the services.
  void endBus();
  // Kills the address book processes.
  void killBookServers() const;

 private:
  void writeBook(const std::string& id, bool enabled) const;
  std::string writeServices(Services services) const;
  void startBus(Services services);
  void runTool(const Poco::Process::Args& arguments, const std::string& input) const;

  TemporaryFolder folder_;
  std::unique_ptr<SessionBus> bus_;
};

}  // namespace zantrio::test
