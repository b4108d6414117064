#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "http/http_transport.h"
#include "simulation/virtual_servers.h"
#include "simulation/world.h"

namespace zt_transfers::test {

// The network in virtual time: its rounds are events of the world.
class CVirtualNetwork final : public IHttpTransport {
 public:
  CVirtualNetwork(CWorld& world, CVirtualServers& servers,
                  std::function<std::optional<TimePoint>()> tick);

  void post(std::function<void()> task) override;
  void wake() override;
  std::unique_ptr<IHttpExchange> send(const HttpRequest& request, IHttpBody& body,
                                      Done done) override;
  std::unique_ptr<IHttpExchange> send(const HttpRequest& request, IHttpSink& sink,
                                      Done done) override;
  CThrottle& throttle() override { return throttle_; }
  const IClock& clock() const override { return world_; }

  // For exchanges: runs the event in the network's thread, unless the network is gone by then.
  void after(Duration delay, std::function<void()> event);
  CWorld& world() { return world_; }
  CVirtualServers& servers() { return servers_; }
  void clearRetired() { retired_.clear(); }

 private:
  CRetired& retired() override { return retired_; }
  void scheduleRound(TimePoint when);
  void round();

  CWorld& world_;
  CVirtualServers& servers_;
  const std::function<std::optional<TimePoint>()> tick_;
  std::vector<std::function<void()>> tasks_;
  std::optional<TimePoint> nextRound_;
  CThrottle throttle_;
  CRetired retired_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace zt_transfers::test
