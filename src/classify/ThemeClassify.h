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

// The method keyword for "quantile", "regolari" or "unico" (any case), or a
// keyword itself; empty when unknown.
QString methodFromName(const QString &name);

// Reads italia/<theme>.dbf of the home and classifies `field`. Questions go
// through the message facade.
Result<ClassifyOutcome> classifyThemeField(const AtlasHome &home, const QString &theme, const QString &field,
                                           const QString &method, int classes, int rampIndex);

// {theme, field, method, requested, status, classes: [{lower, upper | value,
// text, label, count, color, rgb}]}
QJsonObject outcomeJson(const QString &theme, const ClassifyOutcome &outcome, const QString &field,
                        const QString &method, int requested);

}  // namespace mervola::classify
