#pragma once

namespace bench {

// Measures the renderer's time for a frame of 1400 × 900 beside plain copies of the same bytes and
// uploads of the whole frame; prints one line per kind of frame. Needs no display.
void measureUploads();

}  // namespace bench
