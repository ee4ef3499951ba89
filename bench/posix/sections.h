#pragma once

#include "figures.h"

namespace velk::bench {

/// Figures of one part of the benchmark each; see race.h for the names.

/// tcp.velk, tcp.bare, tcp.modbus.
void measureTcp(Figures& figures);

/// fast.velk, fast.bare, fast.modbus; echo.velk, echo.bare.
void measureLines(Figures& figures);

/// paced.fast and paced.echo: one read on a line of 9600 bit/s, in microseconds.
void measurePacedLines(Figures& figures);

/// wait.velk and wait.busy: CPU time of a wait, as a part of its length.
void measureWait(Figures& figures);

/// threads.N.velk and threads.N.bare: .rate in transactions a second, .p99 in microseconds.
void measureThreads(Figures& figures);

/// page.alone: requests a second that velk-sim serves at full speed; page.watched: the part of them that it
/// serves with a reader of its page's events, the median of turns side by side; page.lost: how many of 1,000
/// a second the reader was not told.
void measurePage(Figures& figures);

/// memory.heap and memory.pages: bytes that one more thread with its object and open link needs, as the
/// allocator counts them and as the system does, without the thread's stack.
void measureMemory(Figures& figures);

}  // namespace velk::bench
