#pragma once
// How the program's memory allocator treats freed memory.

namespace mervola
{

// Keeps freed memory in the process for the next allocation instead of
// handing it back to the system at once. Writing a long report or PDF
// allocates and frees the same large buffers page after page (compression
// state, page streams); returning them every time costs page faults that
// took half of the writing time. Call once at start-up.
void keepFreedMemoryForReuse();

} // namespace mervola
