// What ends or disturbs a program from outside: Ctrl-C, a request to end, a terminal that is gone.
#ifndef INTERRUPTION_H
#define INTERRUPTION_H

// Whether an interruption is answered with a word, or a process that this one started does so.
enum class InterruptionWord { Said, Unsaid };

// From now on the first interruption is answered and remembered, so that the program can come to an
// orderly end. Ctrl-C once more ends it at once, without the file that it was writing.
void watchInterruptions(InterruptionWord answer = InterruptionWord::Said);

// Leaves them to the system again: for a process that has no word to say.
void forgetInterruptions();

bool isInterrupted();

// For a program that has looked at `done` of `count` files: returns whether these are all, and reports it
// where they aren't.
bool reportFilesLeft(int done, int count);

// Makes a failed write of what would end the process: a file beyond the limit on its size, a pipe that
// nobody reads.
void survivePipesAndLimits();

// Takes the places of standard streams that are closed. A file that is opened later would get one of
// them, and what is said would be written into it. Writes fail as before.
void keepStandardStreams();

#endif // INTERRUPTION_H
