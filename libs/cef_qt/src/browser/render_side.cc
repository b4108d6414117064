#include "browser/render_side.h"

#include <optional>

#include "base/framework_state.h"
#include "browser/dialog_scheme.h"
#include "browser/origin_scheme.h"
#include "browser/profile.h"
#include "threads/threads.h"

namespace cef_qt {
namespace {

struct Prediction {
  int version = 0;
  RouterNameList top;
  std::optional<RouterNameList> frames;  // nullopt: like top documents

  const RouterNameList& of(bool isTop) const { return isTop || !frames ? top : *frames; }
};

Prediction& prediction() {
  static Prediction current;
  return current;
}

}  // namespace

CefRefPtr<CefRenderProcessHandler> RenderSide::handler() {
  const CefRefPtr<CefApp> app = FrameworkState::app();
  return app ? app->GetRenderProcessHandler() : nullptr;
}

void RenderSide::start() {
  const ScopedThread current(TID_RENDERER);
  if (const auto present = handler()) {
    present->OnWebKitInitialized();
  }
  Profile::setPageScript(currentScript());
}

void RenderSide::recordFunctions(bool isTop, const RouterNameList& given) {
  Prediction& current = prediction();
  const bool known = isTop || current.frames;
  if (known && current.of(isTop) == given) {
    return;
  }
  ++current.version;
  if (isTop) {
    current.top = given;
  } else {
    current.frames = given;
  }
  Profile::setPageScript(currentScript());
}

bool RenderSide::scriptGave(bool isTop, const RouterNameList& given, int scriptVersion) {
  return prediction().version == scriptVersion && prediction().of(isTop) == given;
}

QString RenderSide::currentScript() {
  const Prediction& current = prediction();
  return pageScript(current.version, {DialogScheme::name(), OriginScheme::name()}, current.top,
                    current.of(false));
}

}  // namespace cef_qt
