// A library that a stranger has sent: it leaves a mark when something loads it. Qt takes it for a
// platform plug-in.
#include <QObject>
#include <cstdio>
#include <cstdlib>

namespace {

const bool kLoaded = [] {
  const char* const mark = std::getenv("HOSTILE_MARK");
  std::FILE* const file = mark ? std::fopen(mark, "w") : nullptr;
  return file && std::fclose(file) == 0;
}();

}  // namespace

class HostilePlugin : public QObject {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QPA.QPlatformIntegrationFactoryInterface.5.3" FILE
                        "hostile_library.json")
};

#include "hostile_library.moc"
