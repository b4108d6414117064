#include "platform/linux/services/platform_init.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QIcon>

namespace zantrio {
namespace {

TEST(PlatformInitLinux, TellsTheDesktopWhoTheApplicationIs) {
  createPlatformInit()->init();
  EXPECT_EQ(QGuiApplication::desktopFileName(), "zantrio");
  for (const int size : {16, 32, 128}) {
    EXPECT_EQ(QApplication::windowIcon().pixmap(size).width(), size);
  }
}

}  // namespace
}  // namespace zantrio
