#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <unordered_map>

#include "services/contacts/contact.h"

namespace zantrio {

// The contacts of all address books, prepared for searching. Thread: any.
class CContactCache {
 public:
  // Identified by the book's id and the contact's id in its book. A contact that exists already is
  // replaced and keeps its place in the order.
  void put(const std::string& book, const std::string& id, Contact contact);
  void remove(const std::string& book, const std::string& id);
  void removeBook(const std::string& book);

  // Appends the entries of all matching contacts, in the order of the books' ids and of the
  // contacts' arrival.
  void search(const std::string& query, ContactEntries& results) const;

 private:
  struct CachedContact {
    Contact contact;
    std::string searchText;
  };
  struct Book {
    std::map<std::uint64_t, CachedContact> contacts;  // by arrival
    std::unordered_map<std::string, std::uint64_t> arrivals;
    std::uint64_t nextArrival = 0;
  };

  mutable std::mutex mutex_;
  std::map<std::string, Book> books_;  // guarded by mutex_
};

}  // namespace zantrio
