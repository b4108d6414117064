#pragma once

#include <json/value.h>

#include <memory>

#include "bridge/query_handler_base.h"

namespace zantrio {

class IAddressBook;

// The bridge "addressBookSearchManagerBridge_IPC": the page searches the user's contacts to suggest
// recipients. Thread: UI.
class CQueryHandlerAddressBookManager : public CQueryHandlerBase {
 public:
  // Throws IAddressBook::CAddressBookObtainError where the system has no address book.
  CQueryHandlerAddressBookManager();
  CQueryHandlerAddressBookManager(const CQueryHandlerAddressBookManager&) = delete;
  CQueryHandlerAddressBookManager& operator=(const CQueryHandlerAddressBookManager&) = delete;
  ~CQueryHandlerAddressBookManager() override;

 private:
  Json::Value search(const Json::Value& parameters);

  const std::unique_ptr<IAddressBook> addressBook_;
};

}  // namespace zantrio
