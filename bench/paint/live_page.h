#pragma once

namespace bench {

// Frames a second of animated pages in the client's view at 1400 × 900, and the time from a click
// to the window that shows its effect; prints both. Needs the framework.
void measureLivePages();

}  // namespace bench
