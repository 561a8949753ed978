#pragma once
// The questions asked when the user leaves the program.

#include <functional>

namespace mervola {

// Asks "Salvare le modifiche al progetto?" (Yes/No/Cancel, style 51) when the project
// was modified, else "Uscire dall'applicazione?" (Yes/No). Returns true when
// the program may quit. `saveProject` runs for Yes and returns false when the
// save failed or was abandoned, which keeps the program open.
bool confirmExit(bool projectModified, const std::function<bool()> &saveProject);

}  // namespace mervola
