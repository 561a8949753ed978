#pragma once
// A join, and its removal, run without the wizard: the choices the wizard
// asks for come as values, pass the same checks with the same messages, and
// the join runs with the same staging, conflict names, backup, bookkeeping,
// settings rewrite and roll-back. When anything fails the atlas home is left
// as it was, the staging table of the reference database included.

#include "platform/AtlasHome.h"
#include "project/JoinExecute.h"

namespace mervola
{

struct ScriptedJoin {
    QString theme;      // theme name (its settings file supporto/<theme>.ini)
    QString source;     // path of the .mdb, .dbf, .txt or .csv file
    QString table;      // the Access table (required for .mdb)
    QString themeKey;   // field of the theme table, or its name in STRUTTURE
    QString sourceKey;  // text field of the source (always included)
    QStringList fields; // "FIELD" or "FIELD=alias"; empty: every importable field
};

namespace JoinScriptText
{
inline const QString kNoJoin = QStringLiteral("Il tema %1 non ha tabelle collegate.");
inline const QString kNoSourceField = QStringLiteral("Campo non trovato nella tabella esterna: %1");
inline const QString kNoThemeField = QStringLiteral("Campo non trovato nella tabella del tema: %1");
inline const QString kKeyNotText = QStringLiteral("Il campo di collegamento %1 non è di tipo alfanumerico.");
inline const QString kBadAlias =
    QStringLiteral("L'alias %1 non è valido: sono ammessi al più 10 caratteri fra lettere minuscole, cifre e \"_\".");
inline const QString kNoFile = QStringLiteral("File non trovato: %1");
inline const QString kNoTable = QStringLiteral("Tabella non trovata nel database: %1");
} // namespace JoinScriptText

Result<JoinOutcome> runScriptedJoin(const AtlasHome &home, const ScriptedJoin &join);

// Removes the join of a theme as "Elimina Join" does; fails when the theme
// has none.
Status runScriptedUnjoin(const AtlasHome &home, const QString &theme);

} // namespace mervola
