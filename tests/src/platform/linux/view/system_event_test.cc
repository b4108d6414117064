#include "platform/linux/view/system_event.h"

#include <gmock/gmock.h>

#include <QMimeData>
#include <QUrl>

namespace client::test {
namespace {

using testing::ElementsAre;

class DroppedItemsLinux : public testing::Test {
 protected:
  DroppedItems droppedWith(const QString& text) {
    mime_.setText(text);
    return toDroppedItems(mime_);
  }

  QMimeData mime_;
};

TEST_F(DroppedItemsLinux, TakesTextBesidesFilesUnlessItOnlyNamesThem) {
  mime_.setUrls({QUrl("file:///a%20b"), QUrl("file:///c")});
  EXPECT_EQ(toDroppedItems(mime_).text, std::nullopt);
  EXPECT_THAT(toDroppedItems(mime_).paths, ElementsAre("/a b", "/c"));
  EXPECT_EQ(droppedWith("file:///a%20b\r\nfile:///c\r\n").text, std::nullopt);
  EXPECT_EQ(droppedWith("/a b\n/c").text, std::nullopt);
  EXPECT_EQ(droppedWith("/a b").text, "/a b");
  EXPECT_EQ(droppedWith("two files").text, "two files");
  EXPECT_THAT(toDroppedItems(mime_).paths, ElementsAre("/a b", "/c"));
}

TEST_F(DroppedItemsLinux, ALinkThatIsNoFileIsText) {
  mime_.setUrls({QUrl("http://127.0.0.1/a")});
  EXPECT_EQ(toDroppedItems(mime_).text, "http://127.0.0.1/a");
  EXPECT_TRUE(toDroppedItems(mime_).paths.empty());
}

}  // namespace
}  // namespace client::test
