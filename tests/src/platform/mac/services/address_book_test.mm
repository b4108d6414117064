#include "services/address_book.h"

#import <AddressBook/AddressBook.h>

#include "src/platform/mac/fakes/core_foundation_fake.h"
#include "src/platform/mac/fakes/method_swap.h"
#include "src/platform/mac/mac_fixture.h"
#include "src/platform/mac/thrown_text.h"
#include "support/temporary_folder.h"

namespace {

// The address book that stands in for the system's, and what every search finds in it.
bool bookExists = true;
NSArray* bookRecords = nil;  // dictionaries from property to value; not owned

}  // namespace

@interface NSDictionary (AnsweringRecord)
- (id)valueForProperty:(NSString*)property;
@end

@implementation NSDictionary (AnsweringRecord)
- (id)valueForProperty:(NSString*)property {
  return [self objectForKey:property];
}
@end

@interface AnsweringAddressBook : NSObject
@end

@implementation AnsweringAddressBook
+ (id)sharedAddressBook {
  return bookExists ? [[[AnsweringAddressBook alloc] init] autorelease] : nil;
}

- (NSArray*)recordsMatchingSearchElement:(ABSearchElement*)search {
  return bookRecords;
}
@end

@interface NoSearchElements : NSObject
@end

@implementation NoSearchElements
+ (ABSearchElement*)searchElementForProperty:(NSString*)property
                                       label:(NSString*)label
                                         key:(NSString*)key
                                       value:(id)value
                                  comparison:(ABSearchComparison)comparison {
  return nil;
}
@end

namespace zantrio::mac_test {
namespace {

// On a store of its own, which stays for all tests, as the shared address book does.
class AddressBookMac : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    static const test::TemporaryFolder folder;
    NSString* const location =
        [NSString stringWithUTF8String:(folder.path() + "/Addresses").c_str()];
    [ADLocalAddressBook makeLocalAddressBookAtLocation:location];
    [ADLocalAddressBook setDefaultLocation:location];
    book_ = [ABAddressBook sharedAddressBook];
    for (ABPerson* person in [NSArray arrayWithArray:[book_ people]]) {
      [book_ removeRecord:person];
    }
  }

  ABPerson* add(NSString* firstName, NSString* lastName, NSArray* emails) {
    ABPerson* const person = [[[ABPerson alloc] init] autorelease];
    if (firstName != nil) {
      [person setValue:firstName forProperty:kABFirstNameProperty];
    }
    if (lastName != nil) {
      [person setValue:lastName forProperty:kABLastNameProperty];
    }
    if (emails != nil) {
      ABMutableMultiValue* const values =
          [[[ABMutableMultiValue alloc] initWithType:kABMultiStringProperty] autorelease];
      for (NSString* email in emails) {
        [values addValue:email withLabel:kABEmailWorkLabel];
      }
      [person setValue:values forProperty:kABEmailProperty];
    }
    [book_ addRecord:person];
    return person;
  }

  static ContactEntries search(const std::string& query) {
    ContactEntries found;
    createAddressBook()->search(query, found);
    return found;
  }

  ABAddressBook* book_ = nil;
};

TEST_F(AddressBookMac, FindsNamesAndAddressesThatContainTheQueryInAnyCase) {
  add(@"Ann", @"Lee", @[ @"ann@example.org" ]);
  add(@"Bob", @"Miller", @[ @"bob@example.org" ]);
  const ContactEntries ann = {{"Ann", "Lee", "ann@example.org"}};
  EXPECT_EQ(search("NN"), ann);
  EXPECT_EQ(search("lee"), ann);
  EXPECT_EQ(search("ann@EXAMPLE"), ann);
  EXPECT_EQ(search("nobody"), ContactEntries());
  EXPECT_EQ(search("example.org").size(), 2U);
}

TEST_F(AddressBookMac, EveryAddressOfAPersonIsAnEntryInItsOrder) {
  add(@"Ann", @"Lee", @[ @"b@example.org", @"a@example.org" ]);
  EXPECT_EQ(search("Ann"),
            (ContactEntries{{"Ann", "Lee", "b@example.org"}, {"Ann", "Lee", "a@example.org"}}));
}

TEST_F(AddressBookMac, QueryAndNamesAreInMacRoman) {
  add(@"Zo\u00EB", @"Lee", @[ @"zoe@example.org" ]);
  add(@"\u4E2D", @"Wang", @[ @"wang@example.org" ]);
  EXPECT_EQ(search("Zo\x91"), (ContactEntries{{"Zo\x91", "Lee", "zoe@example.org"}}));
  EXPECT_EQ(search("Zo\xC3\xAB"), ContactEntries()) << "UTF-8";
  EXPECT_EQ(search("wang"), (ContactEntries{{"", "Wang", "wang@example.org"}}))
      << "a name that Mac Roman has no characters for is empty";
}

TEST_F(AddressBookMac, TakesATextFromItsOwnBufferWhereThereIsOne) {
  add(@"Zo\u00EB", @"Lee", @[ @"zoe@example.org" ]);
  coreFoundation().offersOwnBuffer = true;
  EXPECT_EQ(search("lee"), (ContactEntries{{"Zo\x91", "Lee", "zoe@example.org"}}));
  EXPECT_TRUE(coreFoundation().copiedIn.empty());
}

TEST_F(AddressBookMac, KeepsTheSharedBookOnlyAsLongAsItLives) {
  const NSUInteger before = [book_ retainCount];
  {
    const auto book = createAddressBook();
    EXPECT_EQ([book_ retainCount], before + 1);
  }
  EXPECT_EQ([book_ retainCount], before);
}

// On answers that the store cannot give here.
class AddressBookAnswersMac : public MacTest {
 protected:
  AddressBookAnswersMac() {
    bookExists = true;
    bookRecords = nil;
  }

  static ContactEntries search() {
    ContactEntries found;
    createAddressBook()->search("query", found);
    return found;
  }

  const ClassMethodSwap addressBookInPlace_ {
    [ABAddressBook class], [AnsweringAddressBook class], @selector(sharedAddressBook)
  };
};

TEST_F(AddressBookAnswersMac, APersonWithoutAddressesIsAnEntryUnlessTheListOfThemIsEmpty) {
  ABMultiValue* const none =
      [[[ABMultiValue alloc] initWithType:kABMultiStringProperty] autorelease];
  bookRecords = @[
    @{kABFirstNameProperty : @"Ann", kABEmailProperty : none},
    @{kABLastNameProperty : @"Lee"},
    @{},
  ];
  EXPECT_EQ(search(), (ContactEntries{{"", "Lee", ""}, {"", "", ""}}));
}

TEST_F(AddressBookAnswersMac, WhatIsNoStringIsNoName) {
  bookRecords = @[ @{
    kABFirstNameProperty : [NSNumber numberWithInt:5],
    kABLastNameProperty : @"Lee",
  } ];
  EXPECT_EQ(search(), (ContactEntries{{"", "Lee", ""}}));
}

TEST_F(AddressBookAnswersMac, ASearchThatCannotBeMadeFindsNothing) {
  bookRecords = @[ @{kABLastNameProperty : @"Lee"} ];
  const ClassMethodSwap none([ABPerson class], [NoSearchElements class],
                             @selector(searchElementForProperty:label:key:value:comparison:));
  EXPECT_EQ(search(), ContactEntries());
}

TEST_F(AddressBookAnswersMac, ABookThatAnswersNothingFindsNothing) {
  EXPECT_EQ(search(), ContactEntries());
}

TEST_F(AddressBookAnswersMac, WithoutAnAddressBookThereIsNoObject) {
  bookExists = false;
  EXPECT_EQ(textThrownBy([] { createAddressBook(); }),
            "Failed to obtain system address book reference!");
}

}  // namespace
}  // namespace zantrio::mac_test
