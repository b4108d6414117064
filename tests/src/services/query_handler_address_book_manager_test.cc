#include "services/query_handler_address_book_manager.h"

#include <gtest/gtest.h>

#include <memory>

#include "services/address_book.h"
#include "src/fakes/fake_query_callback.h"
#include "src/fakes/fake_services.h"

namespace zantrio {
namespace {

using test::FakeServices;

class AddressBookBridge : public testing::Test {
 protected:
  AddressBookBridge() { services.reset(); }

  // Of a new handler: what it finds on the platform counts when it is made.
  static std::string answer(const std::string& method, const std::string& parameters = "null") {
    CQueryHandlerAddressBookManager handler;
    return test::askBridge(handler, method, parameters);
  }
  static std::string search(const std::string& query) {
    return answer("search", R"({"query":)" + query + "}");
  }

  FakeServices& services = FakeServices::instance();
};

TEST_F(AddressBookBridge, AnswersNamesAndAddressesOfWhatWasFoundInItsOrder) {
  services.contacts = {{"Ann", "Lee", "z@example.org"},
                       {"Ann", "Lee", "a@example.org"},
                       {"Анна", "", ""},
                       {"", "", "b@example.org"}};
  EXPECT_EQ(search(R"("ann")"),
            R"([{"email":"z@example.org","name":"Ann Lee"},)"
            R"({"email":"a@example.org","name":"Ann Lee"},{"name":"\u0410\u043d\u043d\u0430"},)"
            R"({"email":"b@example.org"}])"
            "\n");
  EXPECT_EQ(services.calls, std::vector<std::string>{"search ann"});
}

TEST_F(AddressBookBridge, AnswersNullForAnEntryOfWhichNothingIsKnown) {
  services.contacts = {{}, {"", "Lee", ""}, {}};
  EXPECT_EQ(search(R"("")"), "[null,{\"name\":\"Lee\"},null]\n");
}

TEST_F(AddressBookBridge, LooksForTheEmptyTextWhenNoneIsGiven) {
  EXPECT_EQ(answer("search"), "[]\n");
  EXPECT_EQ(answer("search", "{}"), "[]\n");
  EXPECT_EQ(search("null"), "[]\n");
  EXPECT_EQ(services.calls, std::vector<std::string>(3, "search "));
}

TEST_F(AddressBookBridge, AnswersAFailureForAQueryThatIsNoText) {
  EXPECT_EQ(search("{}"),
            "-1 Exception caught when executing query handler: Type is not convertible to string");
  EXPECT_TRUE(services.calls.empty());
}

TEST_F(AddressBookBridge, AnswersNullWithoutAnAddressBook) {
  services.available = false;
  EXPECT_EQ(search(R"("ann")"), "null\n");
}

TEST_F(AddressBookBridge, CannotBeMadeWhereTheSystemHasNoAddressBook) {
  services.hasAddressBook = false;
  EXPECT_THROW(std::make_unique<CQueryHandlerAddressBookManager>(),
               IAddressBook::CAddressBookObtainError);
}

TEST_F(AddressBookBridge, ListsItsMethods) {
  EXPECT_EQ(answer("supportedMethods"), "[\"search\",\"supportedMethods\"]\n");
}

}  // namespace
}  // namespace zantrio
