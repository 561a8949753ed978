#pragma once
// Rebuilding a saved classification when a theme or project loads: no
// question is asked; the class symbols and labels come from the saved class
// items, the limits from the data (or, for user limits, from the saved
// texts), and the counts from the column.

#include "classify/ClassRange.h"
#include "classify/FieldColumn.h"

namespace mervola::classify {

Classification RipristinaQuantile(const FieldColumn &column, const Classification &saved);
Classification RipristinaIntervalliRegolari(const FieldColumn &column, const Classification &saved);
Classification RipristinaUnique_value(const FieldColumn &column, const Classification &saved);
// The limits typed by the user, as they stand in the saved "Valore" texts.
Classification RipristinaPersonali(const FieldColumn &column, const Classification &saved);

// Dispatches on the saved keyword; "VR" and unknown words come back as saved
// (with counts).
Classification restoreClassification(const FieldColumn &column, const Classification &saved);

}  // namespace mervola::classify
