#include "services/address_book.h"

#import <AddressBook/AddressBook.h>

#include "src/platform/mac/fakes/client_fake.h"
#include "src/platform/mac/fakes/method_swap.h"
#include "src/platform/mac/mac_fixture.h"
#include "support/temporary_folder.h"

namespace {

// The result of every search in the fake address book: dictionaries from property to value. Nil:
// there is no address book.
NSArray* bookRecords = nil;

}  // namespace

@interface NSDictionary (AddressRecord)
- (id)valueForProperty:(NSString*)property;
@end

@implementation NSDictionary (AddressRecord)
- (id)valueForProperty:(NSString*)property {
  return [self objectForKey:property];
}
@end

@interface FakeAddressBook : NSObject
@end

@implementation FakeAddressBook
+ (id)sharedAddressBook {
  return bookRecords != nil ? [[[FakeAddressBook alloc] init] autorelease] : nil;
}

- (NSArray*)recordsMatchingSearchElement:(ABSearchElement*)search {
  return bookRecords;
}

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

class AddressBookMac : public MacTest {
 protected:
  // A store that all tests share, as the shared address book is one per process.
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

  void add(NSString* firstName, NSString* lastName, NSArray* emails) {
    ABPerson* const person = [[[ABPerson alloc] init] autorelease];
    [person setValue:firstName forProperty:kABFirstNameProperty];
    [person setValue:lastName forProperty:kABLastNameProperty];
    ABMutableMultiValue* const values =
        [[[ABMutableMultiValue alloc] initWithType:kABMultiStringProperty] autorelease];
    for (NSString* email in emails) {
      [values addValue:email withLabel:kABEmailWorkLabel];
    }
    [person setValue:values forProperty:kABEmailProperty];
    [book_ addRecord:person];
  }

  static ContactEntries search(const std::string& query) {
    ContactEntries found;
    createAddressBook()->search(query, found);
    return found;
  }

  ABAddressBook* book_ = nil;
};

TEST_F(AddressBookMac, FindsNamesAndAddressesThatContainTheQueryInAnyCase) {
  add(@"Ann", @"Lee", @[ @"ann@example.org", @"a@example.org" ]);
  add(@"Bob", @"Miller", @[ @"bob@example.org" ]);
  const ContactEntries ann = {{"Ann", "Lee", "ann@example.org"}, {"Ann", "Lee", "a@example.org"}};
  for (const char* query : {"NN", "lee", "ann@EXAMPLE"}) {
    EXPECT_EQ(search(query), ann) << query;
  }
  EXPECT_EQ(search("nobody"), ContactEntries());
  EXPECT_EQ(search("example.org").size(), 3U);
}

TEST_F(AddressBookMac, UsesMacRomanForQueriesAndNames) {
  add(@"Zo\u00EB", @"Lee", @[ @"zoe@example.org" ]);
  add(@"\u4E2D", @"Wang", @[ @"wang@example.org" ]);
  EXPECT_EQ(search("Zo\x91"), (ContactEntries{{"Zo\x91", "Lee", "zoe@example.org"}}));
  EXPECT_EQ(search("Zo\xC3\xAB"), ContactEntries()) << "UTF-8";
  EXPECT_EQ(search("wang"), (ContactEntries{{"", "Wang", "wang@example.org"}}))
      << "a name that Mac Roman cannot encode is empty";
}

// Results that the store cannot give here.
TEST_F(AddressBookMac, ToleratesIncompleteRecordsAndMissingParts) {
  const ClassMethodSwap bookInPlace([ABAddressBook class], [FakeAddressBook class],
                                    @selector(sharedAddressBook));
  ABMultiValue* const none =
      [[[ABMultiValue alloc] initWithType:kABMultiStringProperty] autorelease];
  bookRecords = @[
    @{kABFirstNameProperty : @"Ann", kABEmailProperty : none},  // no entry
    @{kABFirstNameProperty : [NSNumber numberWithInt:5], kABLastNameProperty : @"Lee"},
    @{},
  ];
  EXPECT_EQ(search("query"), (ContactEntries{{"", "Lee", ""}, {"", "", ""}}));
  {
    const ClassMethodSwap noSearch([ABPerson class], [FakeAddressBook class],
                                   @selector(searchElementForProperty:label:key:value:comparison:));
    EXPECT_EQ(search("query"), ContactEntries());
  }
  bookRecords = nil;
  EXPECT_EQ(textThrownBy([] { createAddressBook(); }),
            "Failed to obtain system address book reference!");
}

}  // namespace
}  // namespace zantrio::mac_test
