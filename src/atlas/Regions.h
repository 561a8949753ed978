#pragma once
// The twenty regions: the text of the region box (also the Label of the
// regioni table) and the name used in theme aliases, by two-digit code.

#include <QString>
#include <QStringList>

namespace mervola::atlas {

// "VALLE D'AOSTA" for "02"; empty for an unknown code.
QString regionLabel(const QString &code);
// "Valle d'Aosta" for "02"; the code itself for an unknown one.
QString regionName(const QString &code);
// "01" ... "20".
QStringList regionCodes();

}  // namespace mervola::atlas
