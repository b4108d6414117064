#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <map>
#include <vector>

namespace zantrio::test {

// A service on the session bus, with one object, that records the calls it gets. It answers them
// with what was set for their method, else with nothing.
class RecordedService : public QDBusVirtualObject {
 public:
  RecordedService(const QString& name, const QString& path);
  ~RecordedService() override;

  void answer(const QString& method, const QVariant& value) { answers_[method] = value; }
  void refuse(const QString& method) { refused_.push_back(method); }
  const std::vector<QDBusMessage>& calls() const { return calls_; }
  // Waits for one; fails the test when it does not come.
  QDBusMessage waitForCall(const QString& method);

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

 private:
  const QString name_;
  QDBusConnection connection_;  // one of its own, so that calls really pass over the bus
  std::vector<QDBusMessage> calls_;
  std::map<QString, QVariant> answers_;
  QStringList refused_;
};

}  // namespace zantrio::test
