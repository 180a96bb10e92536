// A progress bar on standard error.
#ifndef PROGRESSBAR_H
#define PROGRESSBAR_H

class ProgressBar
{
public:
    // Hidden in any case where standard error isn't a terminal.
    enum class Mode { Hidden, OnTerminal };

    explicit ProgressBar(Mode mode);

    void show(int done, int count);
    void clear();

private:
    bool visible;
    bool shown = false;
};

#endif // PROGRESSBAR_H
