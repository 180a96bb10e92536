// The calls with which a program asks for a debugger and writes to it, for systems that lack them: the
// same names as on Windows. No debugger listens until a program takes its part.
#ifndef DEBUGGER_H
#define DEBUGGER_H

#include <QString>

#include <functional>

extern "C" {

// Returns 1 if a debugger listens, else 0.
int IsDebuggerPresent();

// Hands a text to the debugger that listens; without one nothing happens.
void OutputDebugStringW(const wchar_t *text);
}

class Debugger
{
public:
    using Receiver = std::function<void(const QString &text)>;

    // Sets who takes the part of the debugger from now on, an empty one for nobody. Returns the one so
    // far.
    static Receiver setReceiver(Receiver receiver);
};

#endif // DEBUGGER_H
