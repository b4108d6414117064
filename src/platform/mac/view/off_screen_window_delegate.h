#pragma once

#import <AppKit/AppKit.h>

@class ClientOpenGLView;

// The delegate of the window around an off-screen view. Apart from the view, because the system has
// delegates observe all notifications that they have methods for, and the view observes its
// window's scale itself. Ownership: the view's, which it must not outlive. Thread: main.
@interface OffScreenWindowDelegate : NSObject <NSWindowDelegate> {
 @private
  ClientOpenGLView* view_;  // not owned
}

- (id)initWithView:(ClientOpenGLView*)view;

@end
