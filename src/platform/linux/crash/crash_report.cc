#include "platform/linux/crash/crash_report.h"

#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <string>
#include <system_error>

#include "platform/linux/crash/process_stacks.h"
#include "platform/linux/crash/process_threads.h"
#include "platform/linux/crash/signal_text.h"
#include "services/crash/crash_log.h"
#include "services/crash/crash_report_folder.h"

namespace zantrio {
namespace {

constexpr std::size_t kMaxReports = 10;

void append(int file, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t written = write(file, text.data() + done, text.size() - done);
    if (written < 0 && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "writing the report");
    }
    done += written > 0 ? static_cast<std::size_t>(written) : 0;
  }
}

// In the time zone of the logs.
std::string localTime() {
  const time_t now = time(nullptr);
  tm local{};
  localtime_r(&now, &local);
  char text[64];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S %z", &local)};
}

std::string headText(const CrashReportFacts& facts, const CrashNotice& notice) {
  std::string text = "Zantrio crash report\n\nTime:    " + localTime() +
                     "\nVersion: " + facts.version + "\nSystem:  " + facts.system +
                     "\nProcess: " + std::to_string(notice.process) +
                     "\nThread:  " + nameThread(notice.process, notice.thread) +
                     "\nSignal:  " + describeSignal(notice) + "\n";
  if (notice.note[0] != '\0') {
    text += "Reason:  " + std::string(notice.note) + "\n";
  }
  return text + "\n";
}

void writeTo(int file, const CrashReportFacts& facts, const CrashNotice& notice) {
  append(file, headText(facts, notice));
  append(file, describeStacks(notice.process, notice.thread) + "\n");
  append(file, collectCrashLog(crashLogFilesIn(facts.appDataFolder)));
}

}  // namespace

void writeCrashReport(const CrashReportFacts& facts, const CrashNotice& notice) {
  const CrashReportFolder folder(facts.appDataFolder);
  const int file = folder.createReport();
  try {
    writeTo(file, facts, notice);
  } catch (...) {
    close(file);
    throw;
  }
  close(file);
  folder.keepNewest(kMaxReports);
}

}  // namespace zantrio
