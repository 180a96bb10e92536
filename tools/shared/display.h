// Whether windows can be shown.
#ifndef DISPLAY_H
#define DISPLAY_H

// Whether a display can be opened. An application object ends the process where it can't, so another
// process tries it.
bool canOpenDisplay(int argc, char **argv);

#endif // DISPLAY_H
