#pragma once

#include <Poco/Event.h>
#include <Poco/Net/HTTPServer.h>
#include <Poco/ThreadPool.h>

#include <cstdint>
#include <memory>
#include <string>

#include "devservice/dispatcher.h"
#include "devservice/fault_rules.h"
#include "devservice/message_store.h"
#include "devservice/options.h"

namespace zantrio::devservice {

// The whole service on 127.0.0.1. Serves from construction to `stop`, with one thread per
// connection.
class CDevServer {
 public:
  // Throws std::runtime_error with one line for the user if the port is in use or a folder
  // unusable.
  explicit CDevServer(const Options& options);
  ~CDevServer();
  CDevServer(const CDevServer&) = delete;
  CDevServer& operator=(const CDevServer&) = delete;

  std::uint16_t port() const;
  std::string url() const;
  // Ends all connections and waits for their threads. Calling it again changes nothing.
  void stop();

 private:
  CMessageStore store_;
  CMultipartUploads uploads_;
  CSamples samples_;
  CReceivedMessages received_;
  CProgressReports reports_;
  CUrlSigner signer_;
  CMultipartArea multipart_;
  CFaultRules faults_;
  Poco::Event stopping_{Poco::Event::EVENT_MANUALRESET};
  Areas areas_;
  Poco::ThreadPool threads_;
  std::unique_ptr<Poco::Net::HTTPServer> server_;
};

}  // namespace zantrio::devservice
