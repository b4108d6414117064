#include "platform/mac/app/application.h"

#include "platform/mac/app/application_delegate.h"
#include "platform/mac/app/zantrio_application.h"

// The newer names of modifier keys are missing in older SDKs.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace zantrio {
namespace {

// A menu that is filled entry by entry.
class MenuBuilder {
 public:
  explicit MenuBuilder(NSString* title) : menu_([[NSMenu alloc] initWithTitle:title]) {}
  MenuBuilder(const MenuBuilder&) = delete;
  MenuBuilder& operator=(const MenuBuilder&) = delete;
  ~MenuBuilder() { [menu_ release]; }

  // The menu owns the result. A capital key implies Shift.
  NSMenuItem* add(NSString* title, SEL action, NSString* key) {
    return (NSMenuItem*)[menu_ addItemWithTitle:title action:action keyEquivalent:key];
  }

  void addLine() { [menu_ addItem:[NSMenuItem separatorItem]]; }

  void addMenu(const MenuBuilder& other) {
    [menu_ setSubmenu:other.menu_ forItem:add([other.menu_ title], nullptr, @"")];
  }

  NSMenu* menu() const { return menu_; }

 private:
  NSMenu* const menu_;
};

void addApplicationMenu(MenuBuilder& bar, NSApplication* application) {
  const MenuBuilder services(@"Services");
  MenuBuilder menu(@"Zantrio");
  menu.add(@"About Zantrio", @selector(orderFrontStandardAboutPanel:), @"");
  menu.addLine();
  menu.addMenu(services);
  menu.addLine();
  menu.add(@"Hide Zantrio", @selector(hide:), @"h");
  [menu.add(@"Hide Others", @selector(hideOtherApplications:), @"h")
      setKeyEquivalentModifierMask:NSCommandKeyMask | NSAlternateKeyMask];
  menu.add(@"Show All", @selector(unhideAllApplications:), @"");
  menu.addLine();
  menu.add(@"Quit Zantrio", @selector(terminate:), @"q");
  bar.addMenu(menu);
  [application setServicesMenu:services.menu()];
}

void addFileMenu(MenuBuilder& bar, id commands) {
  MenuBuilder menu(@"File");
  [menu.add(@"New Message", @selector(newMessage:), @"n") setTarget:commands];
  [menu.add(@"New Share", @selector(newShare:), @"N") setTarget:commands];
  menu.addLine();
  menu.add(@"Close Window", @selector(performClose:), @"w");
  bar.addMenu(menu);
}

// Edit commands for text fields of the page.
void addEditMenu(MenuBuilder& bar) {
  MenuBuilder menu(@"Edit");
  menu.add(@"Undo", @selector(undo:), @"z");
  menu.add(@"Redo", @selector(redo:), @"Z");
  menu.addLine();
  menu.add(@"Cut", @selector(cut:), @"x");
  menu.add(@"Copy", @selector(copy:), @"c");
  menu.add(@"Paste", @selector(paste:), @"v");
  menu.add(@"Select All", @selector(selectAll:), @"a");
  bar.addMenu(menu);
}

void addWindowMenu(MenuBuilder& bar, NSApplication* application) {
  MenuBuilder menu(@"Window");
  menu.add(@"Minimize", @selector(performMiniaturize:), @"m");
  menu.add(@"Zoom", @selector(performZoom:), @"");
  menu.addLine();
  menu.add(@"Bring All to Front", @selector(arrangeInFront:), @"");
  bar.addMenu(menu);
  [application setWindowsMenu:menu.menu()];
}

// Installs the menu bar. `commands` implements newMessage: and newShare:; the system implements the
// other entries.
void installMainMenu(NSApplication* application, id commands) {
  MenuBuilder bar(@"");
  addApplicationMenu(bar, application);
  addFileMenu(bar, commands);
  addEditMenu(bar);
  addWindowMenu(bar, application);
  [application setMainMenu:bar.menu()];
}

}  // namespace

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
