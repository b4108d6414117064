#include "services/query_handler_address_book_manager.h"

#include <string>

#include "services/address_book.h"

namespace zantrio {
namespace {

// Null for a person of whom neither name nor address is known.
Json::Value toJson(const ContactEntry& entry) {
  Json::Value json;
  if (!entry.email.empty()) {
    json["email"] = entry.email;
  }
  const std::string name = displayName(entry);
  if (!name.empty()) {
    json["name"] = name;
  }
  return json;
}

}  // namespace

CQueryHandlerAddressBookManager::CQueryHandlerAddressBookManager()
    : addressBook_(createAddressBook()) {
  registerMethod("search", &CQueryHandlerAddressBookManager::search);
}

CQueryHandlerAddressBookManager::~CQueryHandlerAddressBookManager() = default;

Json::Value CQueryHandlerAddressBookManager::search(const Json::Value& parameters) {
  if (!addressBook_) {
    return {};
  }
  const std::string query = parameters.get("query", Json::Value()).asString();
  ContactEntries entries;
  addressBook_->search(query, entries);
  Json::Value response(Json::arrayValue);
  for (const ContactEntry& entry : entries) {
    response.append(toJson(entry));
  }
  return response;
}

}  // namespace zantrio
