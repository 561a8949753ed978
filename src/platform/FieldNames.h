#pragma once
// Names with a meaning of their own in the theme tables.

#include <QString>

namespace mervola {

// Columns named "DUMMY" (any case) are placeholders: never shown, exported,
// listed or analysed.
inline bool isPlaceholderField(const QString &name)
{
    return name.compare(QLatin1String("DUMMY"), Qt::CaseInsensitive) == 0;
}

}  // namespace mervola
