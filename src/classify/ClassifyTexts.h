#pragma once
// Every text the classification shows to the user, in one place.

#include <QString>

namespace mervola::classify::texts {

inline const QString kTooManyValues = QStringLiteral(
    "Attenzione!\nSono presenti più di 500 valori differenti.\n"
    "L'operazione di classificazione mediante il criterio dei Valori Unici non è possibile.");
inline const QString kManyValuesQuantile = QStringLiteral(
    "Attenzione!\nSono presenti più di 50 valori differenti, l'operazione di classificazione "
    "potrebbe richiedere alcuni minuti. Procedere?");
inline const QString kManyValuesUnique = QStringLiteral(
    "Attenzione!\nSono presenti più di 50 valori differenti, l'operazione di classificazione "
    "potrebbe richiedere alcuni minuti.\nProcedere?");
inline const QString kValoreNonValido = QStringLiteral("Occorre inserire un valore valido");
inline const QString kValoreSuperiore = QStringLiteral("ATTENZIONE! Inserire un valore superiore a ");

inline const QString kMethodQuantile = QStringLiteral("Quantile");
inline const QString kMethodRegolari = QStringLiteral("Intervalli regolari");
inline const QString kLegendClassi = QStringLiteral("Classi");
inline const QString kLegendUnici = QStringLiteral("Valori unici");
inline const QString kColColore = QStringLiteral("Colore");
inline const QString kColValore = QStringLiteral("Valore");
inline const QString kColLabel = QStringLiteral("Label");

}  // namespace mervola::classify::texts
