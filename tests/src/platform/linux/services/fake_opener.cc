#include "src/platform/linux/services/fake_opener.h"

#include <QFile>
#include <filesystem>

#include "src/platform/linux/event_loop.h"

namespace zantrio::test {

FakeOpener::FakeOpener() : pathBefore_(qgetenv("PATH")) {
  const std::string script = folder_.makeFile("xdg-open", R"(#!/bin/sh
here=${0%/*}
env > "$here/environment"
printf '%s: %s\n' "$#" "$1" >> "$here/starts"
)");
  std::filesystem::permissions(script, std::filesystem::perms::owner_all);
  qputenv("PATH", QByteArray::fromStdString(folder_.path()) + ':' + pathBefore_);
}

FakeOpener::~FakeOpener() {
  qputenv("PATH", pathBefore_);
}

QStringList FakeOpener::starts() const {
  return linesOf("/starts");
}

QStringList FakeOpener::environment() const {
  return linesOf("/environment");
}

QStringList FakeOpener::linesOf(const char* name) const {
  QFile file(QString::fromStdString(folder_.path() + name));
  if (!file.open(QIODevice::ReadOnly)) {
    return {};
  }
  return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

QStringList FakeOpener::waitForStarts(int count) const {
  EXPECT_TRUE(waitFor([this, count] { return starts().size() >= count; }));
  return starts();
}

}  // namespace zantrio::test
