#include "progressbar.h"

#include <QtGlobal>

#include <algorithm>
#include <cstdio>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

// The columns of the terminal: what it says itself, and what COLUMNS says, if that is less.
int columns()
{
    int count = 80; // of one that says nothing
    winsize size = {};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        count = size.ws_col;
    bool isNumber = false;
    const int wanted = qEnvironmentVariableIntValue("COLUMNS", &isNumber);
    return isNumber && wanted > 0 ? std::min(count, wanted) : count;
}

} // namespace

ProgressBar::ProgressBar(Mode mode) : visible(mode == Mode::OnTerminal && isatty(STDERR_FILENO))
{
}

void ProgressBar::show(int done, int count)
{
    if (!visible || count < 1)
        return;
    constexpr int widest = 50;
    const double share = double(done) / count;
    const std::string percent = std::to_string(int(share * 100.0)) + " %";
    std::string line = std::string(5 - std::min<std::size_t>(5, percent.size()), ' ') + percent;
    // The last column stays free: some terminals break the line behind it.
    const int room = columns() - 1;
    const int width = std::min(widest, room - int(line.size()) - 3);
    if (width > 0) {
        const auto full = std::size_t(share * width);
        line = '[' + std::string(full, '#') + std::string(std::size_t(width) - full, ' ') + "] " + line;
    }
    if (int(line.size()) > room)
        return;
    std::fprintf(stderr, "\r%s", line.c_str());
    std::fflush(stderr);
    shown = int(line.size());
}

void ProgressBar::clear()
{
    if (shown == 0)
        return;
    std::fprintf(stderr, "\r%*s\r", shown, "");
    shown = 0;
}
