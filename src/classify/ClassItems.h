#pragma once
// The classification in the theme settings file: the TIPOCLASSIFICAZIONE
// word, the CAMPO fields (field^classes^method index^ramp index^) and the
// CLASSIFICAZIONE class items, each seven fields followed by "^" and each
// item followed by "|":
//   1 symbol style, 2 value text, 3 outline "1"/"0", 4 fill colour,
//   5 label, 6 outline colour, 7 drawn "1"/"0".
// Conversions work on the raw value strings of the settings reader.

#include "classify/ClassRange.h"

#include <optional>

namespace mervola::classify {

// One class item without its trailing "|".
QString classItem(const ClassRange &range);
ClassRange parseClassItem(const QString &item);

// CLASSIFICAZIONE value: "0" for no class, else the items.
QString classificazioneValue(const std::vector<ClassRange> &classes);
std::vector<ClassRange> parseClassificazione(const QString &value);

// CAMPO value; "0^0^0^0^" for an empty classification without field.
QString campoValue(const Classification &c);

struct CampoFields {
    QString field;
    int classes = 0;
    int methodIndex = 0;
    int rampIndex = 0;
};
CampoFields parseCampo(const QString &value);

// TIPOCLASSIFICAZIONE value: "0" when there are no classes.
QString tipoValue(const Classification &c);

// The saved classification of a theme; nullopt when TIPOCLASSIFICAZIONE is
// "0" (or empty).
std::optional<Classification> classificationFromSettings(const QString &tipo, const QString &campo,
                                                         const QString &classificazione);

}  // namespace mervola::classify
