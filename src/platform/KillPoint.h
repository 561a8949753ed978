#pragma once
// Fault injection for the write paths. Every step after which an interrupted
// write could leave something on disk (a temporary file written, flushed to
// the disk, renamed into place, a row of the reference database, a step of a
// join) calls killPoint(). With MERVOLA_KILL_AT=N in the environment the
// process kills itself with SIGKILL at the N-th such step, which is how the
// fault-injection tests prove that no interruption loses or half-writes a
// file. Without the variable a call costs one comparison.

namespace mervola
{

void killPoint();

// How many kill points this process has passed (tests, diagnostics).
int killPointsPassed();

} // namespace mervola
