// A page of Qt WebEngine with its stock web channel.
#pragma once

#include <QEventLoop>
#include <QObject>
#include <QString>
#include <memory>

class QWebChannel;
class QWebEngineProfile;
class QWebEngineView;

namespace bench {

// The object `server` of the page.
class EchoServer final : public QObject {
  Q_OBJECT

 public:
  Q_INVOKABLE QString echo(const QString& request) { return request; }
  Q_INVOKABLE void result(const QString& text) { emit done(text); }

 signals:
  void done(const QString& text);
};

class BarePage {
 public:
  BarePage();
  ~BarePage();
  BarePage(const BarePage&) = delete;
  BarePage& operator=(const BarePage&) = delete;

  double queriesPerSecond(int inFlight, int count);
  double scriptsPerSecond(int count);
  bool scriptsInOrder();

 private:
  void run(const QString& script);
  QString wait();

  EchoServer server_;
  std::unique_ptr<QWebChannel> channel_;
  std::unique_ptr<QWebEngineProfile> profile_;
  std::unique_ptr<QWebEngineView> view_;
};

}  // namespace bench
