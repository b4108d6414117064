#pragma once

namespace bench {

// The way of frames to the screen that the view takes, beside Qt's OpenGL widget: prints times and
// processor time for each frame of 1400 × 900. Needs a QApplication.
void compareSurfaces();

}  // namespace bench
