#include "services/contacts/contact_cache.h"

#include <utility>

#include "services/contacts/contact_search.h"

namespace zantrio {

void CContactCache::put(const std::string& book, const std::string& id, Contact contact) {
  std::string text = searchText(contact);
  const std::lock_guard lock(mutex_);
  Book& target = books_[book];
  const auto [arrival, isNew] = target.arrivals.try_emplace(id, target.nextArrival);
  if (isNew) {
    ++target.nextArrival;
  }
  target.contacts[arrival->second] = {std::move(contact), std::move(text)};
}

void CContactCache::remove(const std::string& book, const std::string& id) {
  const std::lock_guard lock(mutex_);
  const auto target = books_.find(book);
  if (target == books_.end()) {
    return;
  }
  const auto arrival = target->second.arrivals.find(id);
  if (arrival != target->second.arrivals.end()) {
    target->second.contacts.erase(arrival->second);
    target->second.arrivals.erase(arrival);
  }
}

void CContactCache::removeBook(const std::string& book) {
  const std::lock_guard lock(mutex_);
  books_.erase(book);
}

void CContactCache::search(const std::string& query, ContactEntries& results) const {
  const ContactQuery wanted(query);
  const std::lock_guard lock(mutex_);
  for (const auto& [id, book] : books_) {
    for (const auto& [arrival, cached] : book.contacts) {
      if (wanted.matches(cached.searchText)) {
        appendEntries(cached.contact, results);
      }
    }
  }
}

}  // namespace zantrio
