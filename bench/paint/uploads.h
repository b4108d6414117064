#pragma once

namespace bench {

// What the renderer needs for a frame of 1400 × 900, beside plain copies of the same bytes and
// beside uploads of the whole frame; prints a line for each kind of frame. Needs no display.
void measureUploads();

}  // namespace bench
