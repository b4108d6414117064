#include "devservice/dev_server.h"

#include <Poco/Net/HTTPServerParams.h>
#include <Poco/Net/NetException.h>
#include <Poco/Net/ServerSocket.h>

#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace zantrio::devservice {

namespace {

constexpr int kMinThreads = 16;
constexpr int kMaxConnections = 512;
constexpr int kBacklog = 512;
const Poco::Timespan kReceiveTimeout(60, 0);
const Poco::Timespan kKeepAliveTimeout(75, 0);

Poco::Net::ServerSocket listenOn(std::uint16_t port) {
  try {
    Poco::Net::ServerSocket socket;
    socket.bind(Poco::Net::SocketAddress("127.0.0.1", port), true, false);
    socket.listen(kBacklog);
    return socket;
  } catch (const Poco::Exception& error) {
    throw std::runtime_error("port " + std::to_string(port) +
                             " of 127.0.0.1 cannot be used: " + error.displayText());
  }
}

Poco::Net::HTTPServerParams::Ptr parameters() {
  Poco::Net::HTTPServerParams::Ptr params = new Poco::Net::HTTPServerParams;
  params->setMaxThreads(kMaxConnections);
  params->setMaxQueued(kMaxConnections);
  params->setKeepAlive(true);
  params->setMaxKeepAliveRequests(0);
  params->setKeepAliveTimeout(kKeepAliveTimeout);
  params->setTimeout(kReceiveTimeout);
  return params;
}

const Options& checked(const Options& options) {
  if (!std::filesystem::is_regular_file(std::filesystem::path(options.web) / "index.html")) {
    throw std::runtime_error("the web folder " + options.web + " has no index.html");
  }
  if (!std::filesystem::is_directory(options.javascript)) {
    throw std::runtime_error("the JavaScript folder " + options.javascript + " does not exist");
  }
  return options;
}

}  // namespace

CDevServer::CDevServer(const Options& options)
    : store_(checked(options).data),
      uploads_(std::filesystem::path(options.data) / "multipart", options.minPartSize),
      samples_(options.samples),
      received_(store_, samples_),
      signer_(std::filesystem::path(options.data) / "signing-key"),
      multipart_(store_, uploads_),
      areas_{CApiArea(store_, uploads_, reports_, signer_),
             CReceivedArea(received_, signer_, options.urlLifetime),
             CStorageArea(store_, received_, signer_, options.multipart ? &multipart_ : nullptr),
             CWebArea(options.web, options.javascript),
             CFaultArea(faults_),
             faults_,
             stopping_},
      threads_(kMinThreads, kMaxConnections),
      server_(std::make_unique<Poco::Net::HTTPServer>(new CDispatcherFactory(areas_), threads_,
                                                      listenOn(options.port), parameters())) {
  server_->start();
}

CDevServer::~CDevServer() {
  try {
    stop();
  } catch (const std::exception& error) {
    std::cerr << "zantrio-devservice: the end failed: " << error.what() << std::endl;
  }
}

std::uint16_t CDevServer::port() const {
  return server_->port();
}

std::string CDevServer::url() const {
  return "http://127.0.0.1:" + std::to_string(port());
}

void CDevServer::stop() {
  stopping_.set();
  server_->stopAll(true);
  threads_.joinAll();
}

}  // namespace zantrio::devservice
