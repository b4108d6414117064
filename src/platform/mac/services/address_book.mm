#include "platform/mac/services/address_book.h"

#include <new>
#include <vector>

#include "platform/mac/base/system_text.h"
#include "services/contacts/contact.h"

// As in the header.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace zantrio {
namespace {

// Empty if `value` is not a string or cannot be encoded in Mac Roman.
std::string textOf(id value) {
  std::string text;
  if ([value isKindOfClass:[NSString class]]) {
    readSystemString((CFStringRef)value, kCFStringEncodingMacRoman, text);
  }
  return text;
}

std::vector<std::string> textsOf(ABMultiValue* values) {
  std::vector<std::string> texts;
  for (NSUInteger index = 0; index < [values count]; ++index) {
    texts.push_back(textOf([values valueAtIndex:index]));
  }
  return texts;
}

Contact contactOf(ABRecord* record) {
  Contact contact;
  contact.firstName = textOf([record valueForProperty:kABFirstNameProperty]);
  contact.lastName = textOf([record valueForProperty:kABLastNameProperty]);
  if (ABMultiValue* const emails = [record valueForProperty:kABEmailProperty]) {
    contact.emails = textsOf(emails);
  }
  return contact;
}

ABSearchElement* containing(NSString* query, NSString* property) {
  return [ABPerson searchElementForProperty:property
                                      label:nil
                                        key:nil
                                      value:query
                                 comparison:kABContainsSubStringCaseInsensitive];
}

// Nil if an element cannot be created.
ABSearchElement* searchFor(NSString* query) {
  ABSearchElement* const firstName = containing(query, kABFirstNameProperty);
  ABSearchElement* const lastName = containing(query, kABLastNameProperty);
  ABSearchElement* const email = containing(query, kABEmailProperty);
  if (firstName == nil || lastName == nil || email == nil) {
    return nil;
  }
  return [ABSearchElement
      searchElementForConjunction:kABSearchOr
                         children:[NSArray arrayWithObjects:firstName, lastName, email, nil]];
}

}  // namespace

CAddressBookMac::CAddressBookMac() : book_([[ABAddressBook sharedAddressBook] retain]) {
  if (book_ == nil) {
    throw CAddressBookObtainError();
  }
}

CAddressBookMac::~CAddressBookMac() {
  [book_ release];
}

void CAddressBookMac::search(const std::string& query, ContactEntries& results) {
  @autoreleasepool {
    const CfOwned<CFStringRef> text = createSystemString(query, kCFStringEncodingMacRoman);
    ABSearchElement* const search = text ? searchFor((NSString*)text.get()) : nil;
    if (search == nil) {
      return;
    }
    for (ABRecord* record in [book_ recordsMatchingSearchElement:search]) {
      appendEntries(contactOf(record), results);
    }
  }
}

std::unique_ptr<IAddressBook> createAddressBook() {
  return std::unique_ptr<IAddressBook>(new (std::nothrow) CAddressBookMac);
}

}  // namespace zantrio
