// One call at a time: the toolkit isn't locked, and Python's threads are.
#ifndef TURN_H
#define TURN_H

#include <pybind11/pybind11.h>

namespace py = pybind11;

// The turn of a thread to call the toolkit, for as long as the object lives. It is made and destroyed
// with the interpreter's lock held, which it lets go while it waits, so whoever has the turn can get that
// lock. A thread that has the turn already gets it again. At the end of a thread's first one, what the
// toolkit said meanwhile goes to Python's logger "aiams": its errors as warnings, since a call that fails
// throws, and its warnings, of which every odd file has some, as information. Ctrl-C meanwhile raises
// KeyboardInterrupt behind the call. Once the interpreter ends, other threads get no turn.
class Turn
{
public:
    Turn();
    ~Turn();
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;
};

// Lets other threads run Python for as long as the object lives, where `allowed`. The turn stays.
class Unlocked
{
public:
    explicit Unlocked(bool allowed);
    ~Unlocked();
    Unlocked(const Unlocked &) = delete;
    Unlocked &operator=(const Unlocked &) = delete;

    // Throws what a signal has raised in Python, such as KeyboardInterrupt.
    void checkSignals();

private:
    PyThreadState *state;
};

// Prepares both for the process. Called once, when the module is made.
void prepareTurns();

#endif // TURN_H
