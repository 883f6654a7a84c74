#ifndef DRIVER_ITUNES_WINDOW_H
#define DRIVER_ITUNES_WINDOW_H

// Brings the window of iTunes to the foreground for a moment and gives iTunes time to take in what lies in
// its folder. False when there is no such window. Blocks for a second, and for three with a window.
bool ShowITunesWindow();

#endif
