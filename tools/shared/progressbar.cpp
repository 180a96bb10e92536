#include "progressbar.h"

#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

constexpr int width = 50;

} // namespace

ProgressBar::ProgressBar(Mode mode) : visible(mode == Mode::OnTerminal && isatty(STDERR_FILENO))
{
}

void ProgressBar::show(int done, int count)
{
    if (!visible || count < 1)
        return;
    shown = true;
    const double share = double(done) / count;
    std::string bar(width, ' ');
    bar.replace(0, std::size_t(share * width), std::size_t(share * width), '#');
    std::fprintf(stderr, "\r[%s] %3d %%", bar.c_str(), int(share * 100.0));
    std::fflush(stderr);
}

void ProgressBar::clear()
{
    if (!shown)
        return;
    constexpr int lineLength = width + 8;
    std::fprintf(stderr, "\r%*s\r", lineLength, "");
    shown = false;
}
