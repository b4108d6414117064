#pragma once

#include <string>

#include "fault_server.h"

namespace zt_transfers::test {

// The answer to a GET for an object, with what is wrong about it.
struct ObjectReply {
  std::string head;
  std::string body;
  bool keep = true;  // the connection, after the body
};

ObjectReply replyTo(const CFaultServer::Request& request, const std::string& content,
                    const Fault& fault);

}  // namespace zt_transfers::test
