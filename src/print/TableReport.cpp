// The table report's work table and definition file.
#include "print/TableReport.h"

#include "platform/FileReplace.h"
#include "platform/Profile.h"
#include "platform/SqlText.h"
#include "platform/dbf/DbfFolder.h"
#include "project/ReferenceDb.h"

#include <QFile>

namespace mervola
{

QString reporttext::pageIndicator(int page, int pageCount)
{
    return QString::number(page) + QStringLiteral(" di ") + QString::number(pageCount);
}

namespace
{

QString line(const QString &key, const QString &value)
{
    return key + QStringLiteral(" = ") + value;
}

// Writes the definition through "TempRptNew.vrd", renamed over the target
// only once it is complete.
Status writeDefinition(const QString &target, const QString &fresh, const QStringList &lines)
{
    QByteArray bytes;
    for (const QString &l : lines)
        bytes += l.toUtf8() + '\n';
    if (Status s = writeFileReplacing(target, bytes, fresh); !s)
        return Error{reporttext::kWriteFailed.arg(s.errorMessage())};
    return {};
}

QString bracket(const QString &name)
{
    return QLatin1Char('[') + name + QLatin1Char(']');
}

} // namespace

QStringList reportDefinitionLines(const QString &databasePath, const QList<ReportColumn> &columns,
                                  const QStringList &styleLines)
{
    const QString n = QString::number(columns.size());
    QStringList l;
    l << QStringLiteral("[General]")
      << line(QStringLiteral("Version"), QStringLiteral("VideoSoft Data Reporter (VB5/DAO) (6.0.1)")) << QString();
    l << QStringLiteral("[RecordSource]") << line(QStringLiteral("DataBaseName"), databasePath)
      << line(QStringLiteral("RecordSource"), kReportTable) << QString();
    l << QStringLiteral("[GlobalInfo]") << line(QStringLiteral("ReportTitle"), QStringLiteral("Mervola"))
      << line(QStringLiteral("Align"), QStringLiteral("0"))
      << line(QStringLiteral("Header"), QStringLiteral("<db>|<rs>|Page <p> of <n>"))
      << line(QStringLiteral("Footer"), QStringLiteral(" | |<tt>, <ddd>"))
      << line(QStringLiteral("Columns"), QStringLiteral("1"))
      << line(QStringLiteral("PageBorders"), QStringLiteral("0")) << line(QStringLiteral("Top"), QStringLiteral("1440"))
      << line(QStringLiteral("Bottom"), QStringLiteral("1440")) << line(QStringLiteral("Left"), QStringLiteral("1440"))
      << line(QStringLiteral("Right"), QStringLiteral("720"))
      << line(QStringLiteral("SubtotalPosition"), QStringLiteral("0"))
      << line(QStringLiteral("WordWrap"), QStringLiteral("True"))
      << line(QStringLiteral("WidowOK"), QStringLiteral("False"))
      << line(QStringLiteral("MaxHeight"), QStringLiteral("2880"))
      << line(QStringLiteral("Orientation"), QStringLiteral("0"));
    l << styleLines << QString();
    l << QStringLiteral("[Fields]") << line(QStringLiteral("Count"), n) << QString();
    for (int i = 0; i < columns.size(); ++i) {
        l << QStringLiteral("[Field %1]").arg(i + 1) << line(QStringLiteral("ID"), columns[i].field)
          << line(QStringLiteral("Title"), columns[i].title) << line(QStringLiteral("Sort"), QStringLiteral("1"))
          << line(QStringLiteral("Align"), QStringLiteral("0")) << QStringLiteral("Format =")
          << line(QStringLiteral("Aggregate"), QStringLiteral("0"))
          << line(QStringLiteral("Width"), QStringLiteral("0")) << QString();
    }
    l << QStringLiteral("[Headers]") << line(QStringLiteral("Count"), QStringLiteral("0")) << QString();
    l << QStringLiteral("[Detail]") << line(QStringLiteral("Count"), n);
    for (int i = 0; i < columns.size(); ++i)
        l << QStringLiteral("Field%1 = ").arg(i + 1) + columns[i].field;
    l << QString();
    return l;
}

QString reportDefinitionPath(const AtlasHome &home)
{
    return resolveCaseInsensitive(home.dati(), QStringLiteral("TempRpt.vrd"));
}

QString reportDefinitionNewPath(const AtlasHome &home)
{
    return resolveCaseInsensitive(home.dati(), QStringLiteral("TempRptNew.vrd"));
}

Status writeReportDefinition(const AtlasHome &home, const QList<ReportColumn> &columns)
{
    QStringList styles;
    const QString stili = resolveCaseInsensitive(home.supporto(), QStringLiteral("stili.ini"));
    if (QFile::exists(stili)) {
        auto text = readTextFile(stili);
        if (!text)
            return text.error();
        styles = splitLines(*text);
    }
    return writeDefinition(reportDefinitionPath(home), reportDefinitionNewPath(home),
                           reportDefinitionLines(home.referenceDb(), columns, styles));
}

Status setReportOrientation(const AtlasHome &home, ReportOrientation orientation)
{
    const QString current = reportDefinitionPath(home);
    auto text = readTextFile(current);
    if (!text)
        return Error{reporttext::kNoDefinition.arg(current)};
    QStringList lines = splitLines(*text);
    const QString key = QStringLiteral("Orientation = ");
    for (QString &l : lines)
        if (l.contains(key))
            l = key + QString::number(int(orientation));
    return writeDefinition(current, reportDefinitionNewPath(home), lines);
}

Result<RowSet> readReportRows(DbfFolder &folder, const QString &table, const QStringList &fields, const QString &filter)
{
    QString list;
    for (const QString &f : fields)
        list += QLatin1Char(',') + bracket(f);
    list = list.mid(1); // the leading comma
    if (list.isEmpty())
        list = QStringLiteral("*");
    QString sql = QStringLiteral("Select ") + list + QStringLiteral(" from ") + bracket(table);
    if (!filter.trimmed().isEmpty())
        sql += QStringLiteral(" Where ") + filter;
    auto rows = folder.query(sql);
    if (!rows)
        return rows.error();
    if (fields.isEmpty())
        for (auto &r : rows->rows)
            r.clear();
    return rows;
}

QString tempRptInsertStatement(const QStringList &fields, const std::vector<QVariant> &row)
{
    QStringList names, values;
    for (int i = 0; i < fields.size(); ++i) {
        names << bracket(fields[i]);
        const QVariant v = size_t(i) < row.size() ? row[size_t(i)] : QVariant();
        values << (v.isNull() ? QStringLiteral("'-'") : sqlQuote(v.toString()));
    }
    return QStringLiteral("Insert into TempRpt (") + names.join(QLatin1Char(',')) + QStringLiteral(") Values (") +
           values.join(QLatin1Char(',')) + QStringLiteral(");");
}

Status fillTempRpt(const ReferenceDb &db, const QStringList &fields, const RowSet &rows)
{
    QStringList columns;
    for (const QString &f : fields)
        columns << bracket(f) + QStringLiteral(" TEXT");
    if (columns.isEmpty())
        columns << QStringLiteral("DUMMY TEXT"); // a table needs one column; DUMMY is never printed
    QStringList statements{QStringLiteral("DROP TABLE IF EXISTS TempRpt"), QStringLiteral("CREATE TABLE TempRpt (") +
                                                                               columns.join(QStringLiteral(", ")) +
                                                                               QLatin1Char(')')};
    if (!fields.isEmpty())
        for (const auto &r : rows.rows)
            statements << tempRptInsertStatement(fields, r);
    if (Status s = db.executeAll(statements); !s)
        return Error{reporttext::kCloseReferenceDb, s.error().code};
    return {};
}

Status prepareTableReport(const AtlasHome &home, DbfFolder &folder, const QString &table,
                          const QList<ReportColumn> &columns, const QString &filter)
{
    QStringList fields;
    for (const ReportColumn &c : columns)
        fields << c.field;
    auto rows = readReportRows(folder, table, fields, filter);
    if (!rows)
        return rows.error();
    if (Status s = fillTempRpt(ReferenceDb(home), fields, *rows); !s)
        return s;
    return writeReportDefinition(home, columns);
}

} // namespace mervola
