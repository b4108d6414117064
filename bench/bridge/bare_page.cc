#include "bare_page.h"

#include <QFile>
#include <QWebChannel>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineView>
#include <chrono>

#include "page_text.h"

namespace bench {
namespace {

QString stockScript() {
  QFile file(QStringLiteral(":/qtwebchannel/qwebchannel.js"));
  file.open(QIODevice::ReadOnly);
  return QString::fromUtf8(file.readAll());
}

}  // namespace

BarePage::BarePage()
    : channel_(std::make_unique<QWebChannel>()),
      profile_(std::make_unique<QWebEngineProfile>()),
      view_(std::make_unique<QWebEngineView>()) {
  channel_->registerObject(QStringLiteral("server"), &server_);
  view_->setPage(new QWebEnginePage(profile_.get(), view_.get()));
  view_->page()->setWebChannel(channel_.get());
  view_->resize(800, 600);
  view_->setHtml("<script>" + stockScript() + QString::fromStdString(kPageFunctions) +
                 "let server; const ask = (request, done) => server.echo(request, done);"
                 "new QWebChannel(qt.webChannelTransport, channel => {"
                 "  server = channel.objects.server; server.result('ready'); });</script>");
  view_->show();
  wait();
}

BarePage::~BarePage() {
  delete view_->page();
}

void BarePage::run(const QString& script) {
  view_->page()->runJavaScript(script);
}

QString BarePage::wait() {
  QEventLoop loop;
  QString result;
  const auto connection =
      QObject::connect(&server_, &EchoServer::done, &loop, [&](const QString& text) {
        result = text;
        loop.quit();
      });
  loop.exec();
  QObject::disconnect(connection);
  return result;
}

double BarePage::queriesPerSecond(int inFlight, int count) {
  run(QStringLiteral("measure(%1, %2).then(rate => server.result(String(rate)))")
          .arg(inFlight)
          .arg(count));
  return wait().toDouble();
}

double BarePage::scriptsPerSecond(int count) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < count; ++i) {
    run(QString::fromStdString(script(i)));
  }
  run(QStringLiteral("server.result('end')"));
  wait();
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  return count / time.count();
}

bool BarePage::scriptsInOrder() {
  run(QStringLiteral("server.result(String(inOrder))"));
  return wait() == QStringLiteral("true");
}

}  // namespace bench
