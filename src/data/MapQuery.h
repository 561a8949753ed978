#pragma once
// The map query builder's logic: the pieces the user composes into a
// condition, the statement run on a theme's dBase table, and what the
// result means for the map (one element is shown at once, several are
// listed for the user to choose from).

#include "platform/Result.h"

#include <QStringList>

namespace mervola
{

class DbfFolder;

namespace querytext
{
inline const QString kCaption = QStringLiteral("Query builder");
inline const QString kFieldsCaption = QStringLiteral("Campi:");
inline const QString kValuesCaption = QStringLiteral("Valori:");
inline const QString kOriginalName = QStringLiteral("Nome originale del campo:");
inline const QString kPreview = QStringLiteral("Anteprima valori");
inline const QString kRun = QStringLiteral("Esegui query");
inline const QString kFind = QStringLiteral("Trova su mappa");
inline const QString kClear = QStringLiteral("Annulla query");
inline const QString kChooseField = QStringLiteral("E' necessario selezionare un campo dalla lista!");
inline const QString kNothingFound =
    QStringLiteral("La query non ha trovato nessun valore soddisfacente le condizioni!");
inline const QString kNoElement = QStringLiteral("Non è stato trovato alcun elemento");
inline const QString kSyntaxError = QStringLiteral("Errore di sintassi nella query");
inline const QString kNothingChosen = QStringLiteral("Non è stato selezionato nessun elemento.");
// "La query ha trovato " + count + " valori. Poiché ..."
QString manyFoundMessage(int count);
} // namespace querytext

// A theme the builder can query: its map name, the name shown in the list
// and its shapefile (the table is the .dbf beside it).
struct QueryTheme {
    QString name;
    QString displayName;
    QString shapePath;
};

// Folder and table name of a theme's table ("…/italia/comuni.shp" ->
// "…/italia", "comuni").
QString queryTableFolder(const QString &shapePath);
QString queryTableName(const QString &shapePath);

// The captions of the operator buttons, by index (0 "=" ... 10 ")").
const QStringList &queryOperators();
// What an operator button inserts: its caption with a blank either side.
QString operatorInsertion(int index);
// What a field inserts: "[" + field + "]".
QString fieldInsertion(const QString &field);
// What a value inserts: enclosed in apostrophes for a text field.
QString valueInsertion(const QString &value, bool textField);

// A decimal comma typed by the user becomes a point (every comma).
QString normalizeDecimalComma(const QString &condition);
// A condition with no blank that is a bare number: refused as a syntax error.
bool isBareNumber(const QString &condition);
// "Select LABEL  from " + table + " Where (" + condition + ")"
QString mapQueryStatement(const QString &table, const QString &condition);

// The expression that finds the single element found by a query:
// "LABEL = '" + label with apostrophes doubled + "'".
QString singleResultExpression(const QString &label);
// The expression that finds an element chosen in the result list:
// "Label = " + value when numeric, else "Label = '" + text cut before " (" + "'".
QString chosenResultExpression(const QString &value);

// The outcome of running a condition.
struct MapQueryResult {
    enum class Kind { None, One, Many };
    Kind kind = Kind::None;
    int count = 0;      // records found
    QStringList labels; // non-null LABEL values, in table order
};

// Runs the condition on `table` of `folder`. Any error of the statement
// (and a bare number) is returned as querytext::kSyntaxError.
Result<MapQueryResult> runMapQuery(DbfFolder &folder, const QString &table, const QString &condition);

// Field names of a table and whether each is text.
struct MapQueryField {
    QString name;
    bool isText = false;
};
Result<QList<MapQueryField>> mapQueryFields(DbfFolder &folder, const QString &table);
// The distinct values of a field, as text (nulls left out), read with the
// table query's "Select distinct" statement.
Result<QStringList> mapQueryValues(DbfFolder &folder, const QString &table, const QString &field);

// The map side of the builder: the main window selects the elements of
// `theme` matching `expression`, highlights them and zooms to them.
// Returns false when nothing matched.
class MapSelectionHost
{
public:
    virtual ~MapSelectionHost() = default;
    virtual bool selectAndZoom(const QString &theme, const QString &expression) = 0;
};

} // namespace mervola
