#pragma once

#include "include/cef_base.h"

namespace client {

// What has changed on a page since it was drawn last: the smallest rectangle around it.
class ChangedArea {
 public:
  void add(const CefRect& rect);
  void addAll() { all_ = true; }

  // The part of a page of this size that is to be drawn, and forgets it; all of it when nothing is
  // known to have changed.
  CefRect take(const CefSize& page);

 private:
  bool all_ = true;  // nothing has been drawn yet
  CefRect around_;
};

}  // namespace client
