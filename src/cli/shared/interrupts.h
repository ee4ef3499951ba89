#pragma once

#include <chrono>

/// What asks a program to end while it works: Ctrl-C, the end of its terminal or session, a service manager.
namespace velk::cli {

/// Keeps these requests until somebody asks for them. On Linux SIGINT, SIGTERM and SIGHUP; on Windows the
/// console's control events, of which those that close the console or end the session wait for the program's
/// own end.
void watchInterrupts();

/// Lets them end the program at once again, as where it waits for a person.
void unwatchInterrupts();

/// Whether one has come.
bool isInterrupted();

/// Waits until one has come, at the longest so long. May return early.
void waitForInterrupt(std::chrono::milliseconds longest);

/// Throws `Failure` with `interrupted` when one has come.
void checkInterrupt();

/// From now on none ends the program where nobody watches: `checkBreak` finds it there. Behind `unwatchInterrupts` it
/// ends the wait for a person.
void surviveInterrupts();

/// Like `checkInterrupt` where nobody watches; does nothing where somebody does.
void checkBreak();

/// Forgets a Ctrl-C that has come. Returns false when something else has, which asks for more than that.
bool forgetInterrupt();

}  // namespace velk::cli
