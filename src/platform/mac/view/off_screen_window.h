#pragma once

#import <AppKit/AppKit.h>

@class ClientOpenGLView;

// The delegate of an off-screen view's window. Separate from the view, because AppKit registers
// delegates for every notification that they implement, and the view observes its window's scale
// itself. Ownership: the view's, which must outlive it. Thread: main.
@interface OffScreenWindowDelegate : NSObject <NSWindowDelegate> {
 @private
  ClientOpenGLView* view_;  // not owned
}

- (id)initWithView:(ClientOpenGLView*)view;

@end
