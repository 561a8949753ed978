#pragma once
// The toolbar's icons, drawn as vectors in one consistent style.

#include <QIcon>

namespace mervola {

QIcon commandIcon(const QString &key);

}  // namespace mervola
