#include "services/crash/crash_log.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "app/text/utf8_text.h"
#include "shown_text/secrets.h"

namespace zantrio {
namespace {

constexpr std::size_t kAppCap = 15360;
constexpr std::size_t kBrowserCap = 15360;
constexpr std::size_t kTransfersCap = 30720;
constexpr std::size_t kLongestCharacter = 4;
// Read as well, because the name of a secret there tells that the tail begins within its value. It
// also tells logDataToText that the data was cut.
constexpr std::size_t kBeforeTail = 16384;

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

std::size_t countCharacters(std::string_view utf8) {
  return utf8.size() -
         static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), isContinuation));
}

// Drops the continuation bytes at the front.
std::string_view withoutSplitCharacter(std::string_view tail) {
  std::size_t split = 0;
  while (split < tail.size() && split < kLongestCharacter - 1 && isContinuation(tail[split])) {
    ++split;
  }
  return tail.substr(split);
}

// Reads until the end of the file or `length` bytes.
std::string readFrom(int fd, off_t position, std::size_t length) {
  std::string bytes(length, '\0');
  std::size_t done = 0;
  while (done < length) {
    const ssize_t count =
        pread(fd, bytes.data() + done, length - done, position + static_cast<off_t>(done));
    if (count <= 0) {
      break;
    }
    done += static_cast<std::size_t>(count);
  }
  bytes.resize(done);
  return bytes;
}

std::string tailOf(int fd, std::size_t maximum) {
  struct stat status {};
  if (fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
    return {};
  }
  const off_t wanted = std::min(status.st_size, static_cast<off_t>(maximum + kBeforeTail));
  std::string bytes = readFrom(fd, status.st_size - wanted, static_cast<std::size_t>(wanted));
  shown_text::maskSecrets(bytes);
  return logDataToText(bytes, maximum);
}

// Reads only the tail of the file, however large it is.
std::string tailOfFile(const std::string& path, std::size_t maximum) {
  // O_NONBLOCK: opening a pipe in place of a log must not wait for its writer.
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) {
    return {};
  }
  std::string text = tailOf(fd, maximum);
  close(fd);
  return text;
}

std::string header(const std::string& name) {
  return std::string(22, '-') + " " + name + " " + std::string(27, '-') + "\n\n";
}

}  // namespace

CrashLogFiles crashLogFilesIn(const std::string& appDataFolder) {
  return {appDataFolder + "zt_app.log", appDataFolder + "zt_transfers.log",
          appDataFolder + "zt_transfers.log.0", appDataFolder + "cef_browser.log"};
}

std::string logDataToText(std::string_view data, std::size_t maximum) {
  if (data.size() <= maximum) {
    return toValidUtf8(data);
  }
  return toValidUtf8(withoutSplitCharacter(data.substr(data.size() - maximum)));
}

std::string collectCrashLog(const CrashLogFiles& files) {
  const std::string transfers = tailOfFile(files.transfers, kTransfersCap);
  std::string text = header("zt_app.log") + tailOfFile(files.app, kAppCap);
  text += "\n\n" + header("zt_transfers.log") + transfers;
  if (countCharacters(transfers) < kTransfersCap) {
    text +=
        "\n\n" + header("zt_transfers.log.0") + tailOfFile(files.secondaryTransfers, kTransfersCap);
  }
  text += "\n\n" + header("cef_browser.log") + tailOfFile(files.browser, kBrowserCap);
  return text;
}

}  // namespace zantrio
