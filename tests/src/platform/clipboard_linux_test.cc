#include "platform/linux/clipboard_linux.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace zantrio {
namespace {

TEST(ClipboardLinux, HoldsTheTextAfterTheObjectIsGone) {
  const std::string text = "caf\u00E9 \U0001F600 100% <b>\n\ttwo lines";
  ASSERT_TRUE(createClipboard()->copyText(text));
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  ASSERT_TRUE(data->hasText());
  EXPECT_EQ(data->text().toStdString(), text);
  EXPECT_FALSE(data->hasHtml());
}

TEST(ClipboardLinux, ReplacesWhatWasThereAlsoByNothing) {
  ASSERT_TRUE(createClipboard()->copyText("before"));
  ASSERT_TRUE(createClipboard()->copyText(""));
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "");
}

}  // namespace
}  // namespace zantrio
