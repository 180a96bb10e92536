// A progress bar on standard error, in one line whatever the width of the terminal.
#ifndef PROGRESSBAR_H
#define PROGRESSBAR_H

class ProgressBar
{
public:
    // OnTerminal shows the bar only if standard error is a terminal.
    enum class Mode { Hidden, OnTerminal };

    explicit ProgressBar(Mode mode);

    // Draws the bar for `done` of `count` steps, over the last one.
    void show(int done, int count);
    // Takes the bar off the line, if there is one.
    void clear();

private:
    bool visible;
    int shown = 0; // characters on the line
};

#endif // PROGRESSBAR_H
