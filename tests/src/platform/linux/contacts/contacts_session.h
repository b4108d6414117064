#pragma once

#include <Poco/Process.h>

#include <memory>
#include <string>

#include "support/server_process.h"
#include "support/temporary_folder.h"

namespace zantrio::test {

// A session bus with a home of its own, on which a real Evolution Data Server is started when it
// is asked for; this process is in that session as long as the object lives. There are the address
// books "friends" and "work", and "hidden", which is disabled.
class ContactsSession {
 public:
  enum class Services { kEds, kNone, kHanging };

  explicit ContactsSession(Services services = Services::kEds);
  ContactsSession(const ContactsSession&) = delete;
  ContactsSession& operator=(const ContactsSession&) = delete;
  ~ContactsSession();

  // Changes contacts as another program does; throws when it fails.
  void add(const std::string& book, const std::string& cards) const;
  void modify(const std::string& book, const std::string& cards) const;
  void remove(const std::string& book, const std::string& id) const;
  void setEnabled(const std::string& book, bool enabled) const;

  // Ends the bus, and with it the services.
  void endBus();
  // Ends the processes that keep the address books, as a crash does.
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
