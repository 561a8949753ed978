#pragma once
// Runs independent pieces of work (bands of a picture, slices of a file) on
// the global thread pool and on the calling thread.

#include <functional>

namespace mervola::map
{

// Calls job(0) .. job(count - 1), job(0) on this thread, the others on the
// pool; a piece still queued when this thread is free is taken back and run
// here, so a busy pool never leaves the caller waiting. Returns when every
// piece is done.
void runInParallel(int count, const std::function<void(int)> &job);

// Pieces for work that splits well: one per thread of the pool.
int parallelPieces();

} // namespace mervola::map
