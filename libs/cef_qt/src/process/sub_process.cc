#include <unistd.h>

#include <QFile>
#include <QLibraryInfo>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <system_error>

#include "include/cef_app.h"
#include "process/environment.h"

namespace {

// Chromium puts the type first. Further words may be names of files.
bool isSubProcess(const CefMainArgs& args) {
  return args.argc > 1 && std::string_view(args.argv[1]).rfind("--type=", 0) == 0;
}

QByteArray webEngineProcess() {
  const QByteArray named = qgetenv(cef_qt::kRealProcessVariable);
  if (!named.isEmpty()) {
    return named;
  }
  return QFile::encodeName(QLibraryInfo::path(QLibraryInfo::LibraryExecutablesPath)) +
         "/QtWebEngineProcess";
}

}  // namespace

int CefExecuteProcess(const CefMainArgs& args, CefRefPtr<CefApp> /*application*/,
                      void* /*windows_sandbox_info*/) {
  if (!isSubProcess(args)) {
    return -1;
  }
  // Qt's executable replaces this process and sets its exit code.
  const QByteArray program = webEngineProcess();
  execv(program.constData(), args.argv);
  std::fprintf(stderr, "%s cannot be run: %s\n", program.constData(),
               std::generic_category().message(errno).c_str());
  return 127;
}
