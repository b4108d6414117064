#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <map>
#include <vector>

namespace zantrio::test {

// A service on the session bus with one object. Records its calls and sends the reply set for the
// method, else an empty one.
class RecordedService : public QDBusVirtualObject {
 public:
  RecordedService(const QString& name, const QString& path);
  ~RecordedService() override;

  void setReply(const QString& method, const QVariant& value) { replies_[method] = value; }
  void refuse(const QString& method) { refused_.push_back(method); }
  const std::vector<QDBusMessage>& calls() const { return calls_; }
  void forgetCalls() { calls_.clear(); }
  // Waits for a call; the test fails if none arrives.
  QDBusMessage waitForCall(const QString& method);

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  const QString name_;
  QDBusConnection connection_;  // separate, so that calls really pass over the bus
  std::vector<QDBusMessage> calls_;
  std::map<QString, QVariant> replies_;
  QStringList refused_;
};

}  // namespace zantrio::test
