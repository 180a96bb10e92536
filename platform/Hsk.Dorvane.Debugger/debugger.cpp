#include "debugger.h"

#include <utility>

namespace {

Debugger::Receiver &receiver()
{
    static Debugger::Receiver current;
    return current;
}

} // namespace

int IsDebuggerPresent()
{
    return receiver() ? 1 : 0;
}

void OutputDebugStringW(const wchar_t *text)
{
    if (receiver())
        receiver()(QString::fromWCharArray(text));
}

Debugger::Receiver Debugger::setReceiver(Receiver newReceiver)
{
    return std::exchange(receiver(), std::move(newReceiver));
}
