// The table report's work table and definition file.
#include "print/TableReport.h"

#include "platform/FileReplace.h"
#include "platform/Profile.h"
#include "platform/SqlText.h"
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

Status fillTempRpt(const ReferenceDb &db, const QStringList &fields, const std::vector<QStringList> &rows,
                   const ReportProgress &progress)
{
    QStringList columns, names, values;
    for (int i = 0; i < fields.size(); ++i) {
        columns << bracket(fields[i]) + QStringLiteral(" TEXT");
        names << bracket(fields[i]);
        values << QLatin1Char('?') + QString::number(i + 1);
    }
    if (columns.isEmpty())
        columns << QStringLiteral("DUMMY TEXT"); // a table needs one column; DUMMY is never printed
    auto conn = db.open();
    if (!conn)
        return Error{reporttext::kCloseReferenceDb, conn.error().code};
    auto failed = [&conn](const Status &s) {
        (void)conn->rollback();
        return Status(Error{reporttext::kCloseReferenceDb, s.error().code});
    };
    if (Status s = conn->begin(); !s)
        return failed(s);
    for (const QString &sql : {QStringLiteral("DROP TABLE IF EXISTS TempRpt"),
                               QStringLiteral("CREATE TABLE TempRpt (") + columns.join(QStringLiteral(", ")) +
                                   QLatin1Char(')')})
        if (Status s = conn->exec(ReferenceDb::toSqlite(sql)); !s)
            return failed(s);
    // One insert statement, prepared once; every value goes in as text, an
    // empty value (a null in the table) as "-". The rows go in by chunks,
    // each in one transaction, so that a long table shows its progress and
    // can be stopped.
    const QString insert = ReferenceDb::toSqlite(QStringLiteral("Insert into TempRpt (") +
                                                 names.join(QLatin1Char(',')) + QStringLiteral(") Values (") +
                                                 values.join(QLatin1Char(',')) + QStringLiteral(");"));
    constexpr size_t kChunk = 1000;
    const int total = int(rows.size());
    size_t next = 0;
    while (true) {
        const size_t end = fields.isEmpty() ? rows.size() : std::min(rows.size(), next + kChunk);
        if (!fields.isEmpty()) {
            const Status s = conn->runEach(insert, end - next, [&](size_t i) {
                const QStringList &row = rows[next + i];
                QVariantList params;
                params.reserve(fields.size());
                for (int f = 0; f < fields.size(); ++f) {
                    const QString v = row.value(f);
                    params << (v.isEmpty() ? QStringLiteral("-") : v);
                }
                return params;
            });
            if (!s)
                return failed(s);
        }
        if (Status s = conn->commit(); !s)
            return failed(s);
        next = end;
        if (progress && !progress(int(next), total))
            return Error{reporttext::kCancelled};
        if (next >= rows.size())
            return {};
        if (Status s = conn->begin(); !s)
            return failed(s);
    }
}

Status prepareTableReport(const AtlasHome &home, const QList<ReportColumn> &columns,
                          const std::vector<QStringList> &rows, const ReportProgress &progress)
{
    QStringList fields;
    for (const ReportColumn &c : columns)
        fields << c.field;
    if (Status s = fillTempRpt(ReferenceDb(home), fields, rows, progress); !s)
        return s;
    return writeReportDefinition(home, columns);
}

} // namespace mervola
