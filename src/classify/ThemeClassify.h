#pragma once
// Classifying a field of a theme of the atlas home without a window (the
// command line), and the JSON form of the result.

#include "classify/ClassificationMethod.h"
#include "platform/Result.h"

#include <QJsonObject>

namespace mervola {
class AtlasHome;
}

namespace mervola::classify {

// Command-line keyword for natural breaks; the classes come back as user
// limits (PERSONALI), the way the classification window's button gives them.
inline const QString kNaturali = QStringLiteral("NATURALI");

// The method keyword for "quantile", "regolari", "unico" or "naturali" (any
// case), or a keyword itself; empty when unknown.
QString methodFromName(const QString &name);

// Reads italia/<theme>.dbf of the home and classifies `field`. Questions go
// through the message facade.
Result<ClassifyOutcome> classifyThemeField(const AtlasHome &home, const QString &theme, const QString &field,
                                           const QString &method, int classes, int rampIndex);

// {theme, field, method, requested, status, classes: [{lower, upper | value,
// text, label, count, color, rgb}], gvf (numeric classes only)}
QJsonObject outcomeJson(const QString &theme, const ClassifyOutcome &outcome, const QString &field,
                        const QString &method, int requested);

}  // namespace mervola::classify
