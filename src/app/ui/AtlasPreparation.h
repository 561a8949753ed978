#pragma once
// The first start on an empty atlas home: the atlas is built from the source
// data installed with the program, under a progress window, before the
// splash window shows.

#include "platform/AtlasHome.h"

#include <QString>

namespace mervola {

namespace AtlasPreparationText {
inline const QString kPreparing = QStringLiteral("Preparazione dell'atlante...");
inline const QString kNoSources =
    QStringLiteral("Impossibile preparare l'atlante in %1: i dati di origine non sono stati trovati.\n"
                   "Cartelle cercate:\n%2\n"
                   "Reinstallare Mervola oppure indicare la cartella dei dati con la variabile MERVOLA_SOURCES.");
inline const QString kFailed = QStringLiteral("Impossibile preparare l'atlante in %1.\n%2");
}  // namespace AtlasPreparationText

// Builds `home` from atlasSourcesFolder(), showing the progress window
// meanwhile (each step is also printed on stderr). On failure shows the
// critical message and returns false; the home is then left as it was.
bool prepareAtlasHome(const AtlasHome &home);

}  // namespace mervola
