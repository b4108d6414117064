#include "src/platform/linux/recorded_service.h"

#include <algorithm>

#include "src/platform/linux/event_loop.h"

namespace zantrio::test {

RecordedService::RecordedService(const QString& name, const QString& path)
    : name_(name),
      connection_(
          QDBusConnection::connectToBus(QDBusConnection::SessionBus, "service of " + name)) {
  EXPECT_TRUE(connection_.registerVirtualObject(path, this));
  EXPECT_TRUE(connection_.registerService(name));
}

RecordedService::~RecordedService() {
  connection_.unregisterService(name_);
  QDBusConnection::disconnectFromBus("service of " + name_);
}

QDBusMessage RecordedService::waitForCall(const QString& method) {
  const auto find = [this, &method] {
    return std::find_if(calls_.begin(), calls_.end(),
                        [&method](const auto& call) { return call.member() == method; });
  };
  EXPECT_TRUE(waitFor([&] { return find() != calls_.end(); })) << method.toStdString();
  return find() != calls_.end() ? *find() : QDBusMessage();
}

bool RecordedService::handleMessage(const QDBusMessage& message,
                                    const QDBusConnection& connection) {
  calls_.push_back(message);
  if (refused_.contains(message.member())) {
    connection.send(message.createErrorReply(QDBusError::Failed, "refused"));
  } else if (const auto reply = replies_.find(message.member()); reply != replies_.end()) {
    connection.send(message.createReply(reply->second));
  } else {
    connection.send(message.createReply());
  }
  return true;
}

}  // namespace zantrio::test
