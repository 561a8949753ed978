#pragma once
// What the information tool found under a click: per visible theme, the
// element's fields and values; and the texts the information window shows.

#include "platform/Result.h"
#include "map/MapModel.h"
#include "project/ReferenceDb.h"

#include <QList>
#include <QPair>
#include <functional>

namespace mervola {

struct FoundElement {
    QString theme;  // layer name
    QString title;  // shown name of the theme (its alias), the layer name when empty
    int feature = -1;
    QList<QPair<QString, QString>> fields;  // field name, value text (DUMMY left out)
    QString progMont;                       // community code, when the table has one
};

using FieldNamer = std::function<QString(const QString &theme, const QString &field)>;

// The element under `mapPoint` in every visible theme, top theme first;
// values with the decimal comma.
QList<FoundElement> collectElements(const map::MapModel &model, QPointF mapPoint, double tolerance,
                                    const FieldNamer &nameOf = {});

// A value's text without a ".00000" / ",00000" tail ("125.00000" -> "125").
QString infoValueText(const QString &text);
// True for the municipality layers ("comuni" or a name starting "COMU_").
bool isMunicipalityLayer(const QString &theme);
// True for the mountain-community layer ("commont" or a name starting "CMON").
bool isCommunityLayer(const QString &theme);
// "01".."NN": the category code of a position in the category list.
QString categoryCodeOf(int index);
// The fields of a category table's row for a community ("SELECT * FROM NN
// WHERE PROG_MONT = '...'"), DUMMY left out, nulls empty.
Result<QList<QPair<QString, QString>>> categoryRow(const ReferenceDb &db, const QString &code, const QString &progMont);

}  // namespace mervola
