#include "platform/mac/app/application.h"

#include "platform/mac/app/application_delegate.h"
#include "platform/mac/app/main_menu.h"
#include "platform/mac/app/zantrio_application.h"

namespace zantrio {

class CApplicationMac::Impl {
 public:
  explicit Impl(std::unique_ptr<IApplicationCommands> commands)
      : commands_(std::move(commands)),
        delegate_([[ZantrioApplicationDelegate alloc] initWithCommands:commands_.get()]) {
    @autoreleasepool {
      NSApplication* const application = [ZantrioApplication sharedApplication];
      [application setDelegate:(id)delegate_];
      installMainMenu(application, delegate_);
    }
  }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
  ~Impl() {
    @autoreleasepool {
      [NSApp setMainMenu:nil];
      [NSApp setServicesProvider:nil];
      [NSApp setDelegate:nil];
    }
    [delegate_ release];
  }

 private:
  const std::unique_ptr<IApplicationCommands> commands_;
  ZantrioApplicationDelegate* const delegate_;
};

CApplicationMac::CApplicationMac(std::unique_ptr<IApplicationCommands> commands)
    : impl_(std::make_unique<Impl>(std::move(commands))) {}

CApplicationMac::~CApplicationMac() = default;

}  // namespace zantrio
