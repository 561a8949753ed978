#include "project/JoinStaging.h"

#include "platform/SqlText.h"
#include "project/StructureTable.h"

#include <QFileInfo>

namespace mervola {

namespace {

QString boolText(bool b) { return b ? QStringLiteral("-1") : QStringLiteral("0"); }

bool truthy(const QVariant &v)
{
    if (v.typeId() == QMetaType::QString) {
        const QString s = v.toString().trimmed();
        return s == QLatin1String("-1") || s.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
    }
    return v.toLongLong() != 0;
}

}  // namespace

QString StagedField::outputName() const
{
    if (conflitto)
        return nomeConflitto;
    if (aliasCampo.toUpper() != nomeCampo.toUpper())
        return aliasCampo;
    return nomeCampo;
}

bool hasForbiddenFileCharacters(const QString &fileName)
{
    static const QString forbidden = QStringLiteral("\\/:*?\"<>|");
    for (QChar c : fileName)
        if (forbidden.contains(c) || c.unicode() < 32)
            return true;
    return false;
}

Status checkSourceFileName(const QString &sourceType, const QString &fileName)
{
    if (sourceType == JoinSourceType::Access)
        return {};
    const QFileInfo info(fileName);
    if (info.completeBaseName().size() <= 8)
        return {};
    const QString ext = sourceType == JoinSourceType::Text ? QStringLiteral(".txt") : QStringLiteral(".dbf");
    return Status::fail(info.fileName().toUpper() + QStringLiteral(" nome file non valido.") + JoinText::kCrLf +
                        QStringLiteral("Il nome del file non deve superare gli 8 caratteri (estensione esclusa):") +
                        JoinText::kCrLf + QStringLiteral("miofile1") + ext + QStringLiteral("  -> corretto ") +
                        JoinText::kCrLf + QStringLiteral("miofile1999") + ext + QStringLiteral(" -> errato."));
}

QList<StagedField> stagedRowsFor(const StagingContext &context, const QList<SourceField> &fields,
                                 const QStringList &themeFields)
{
    QList<StagedField> rows;
    for (const SourceField &f : fields) {
        StagedField r;
        r.incluso = isImportable(f.engineType);  // the others are listed, not included
        r.nomeCampo = f.name;
        r.aliasCampo = f.name;
        r.tipoCampo = f.engineType;
        r.strTipoCampo = familyText(familyOfType(f.engineType));
        for (const QString &t : themeFields)
            if (t.toUpper() == f.name.toUpper()) {
                r.conflitto = true;
                r.nomeConflitto = QStringLiteral("z") + f.name;
            }
        r.path = context.sourceFolder;
        r.file = context.sourceFile;
        r.tipoFonte = context.sourceType;
        r.collegatoAPath = context.themeFolder;
        r.collegatoAFile = context.themeTable;
        rows << r;
    }
    return rows;
}

QString structJoinInsert(const StagedField &r)
{
    return QStringLiteral("INSERT INTO STRUCTJOIN (INCLUSO,NOMECAMPO,ALIASCAMPO,TIPOCAMPO,STRTIPOCAMPO,CONFLITTO,"
                          "NOMECONFLITTO,PATH,FILE,TIPOFONTE,COLLEGATOAPATH,COLLEGATOAFILE) VALUES ") +
           QStringLiteral("(") + boolText(r.incluso) + QLatin1Char(',') + sqlQuote(r.nomeCampo) + QLatin1Char(',') +
           sqlQuote(r.aliasCampo) + QLatin1Char(',') + QString::number(r.tipoCampo) + QLatin1Char(',') +
           sqlQuote(r.strTipoCampo) + QLatin1Char(',') + boolText(r.conflitto) + QLatin1Char(',') +
           sqlQuote(r.nomeConflitto) + QLatin1Char(',') + sqlQuote(r.path) + QLatin1Char(',') + sqlQuote(r.file) +
           QLatin1Char(',') + sqlQuote(r.tipoFonte) + QLatin1Char(',') + sqlQuote(r.collegatoAPath) +
           QLatin1Char(',') + sqlQuote(r.collegatoAFile) + QStringLiteral(" );");
}

Status stageFields(const ReferenceDb &db, const QList<StagedField> &rows)
{
    QStringList statements{QStringLiteral("DELETE * FROM STRUCTJOIN")};
    for (const StagedField &r : rows)
        statements << structJoinInsert(r);
    if (Status st = db.executeAll(statements); !st)
        return st;
    for (const StagedField &r : rows)
        if (familyOfType(r.tipoCampo) == FieldFamily::Alphanumeric)
            return {};
    return Status::fail(JoinText::kNoTextField);
}

Result<QList<StagedField>> readStaged(const ReferenceDb &db, const QString &where)
{
    auto rs = db.query(QStringLiteral("Select * from STRUCTJOIN ") + where);
    if (!rs)
        return rs.error();
    QList<StagedField> rows;
    const RowSet &set = rs.value();
    for (size_t i = 0; i < set.size(); ++i) {
        StagedField r;
        r.incluso = truthy(set.value(i, QStringLiteral("INCLUSO")));
        r.nomeCampo = set.value(i, QStringLiteral("NOMECAMPO")).toString();
        r.aliasCampo = set.value(i, QStringLiteral("ALIASCAMPO")).toString();
        r.tipoCampo = set.value(i, QStringLiteral("TIPOCAMPO")).toInt();
        r.strTipoCampo = set.value(i, QStringLiteral("STRTIPOCAMPO")).toString();
        r.conflitto = truthy(set.value(i, QStringLiteral("CONFLITTO")));
        r.nomeConflitto = set.value(i, QStringLiteral("NOMECONFLITTO")).toString();
        r.path = set.value(i, QStringLiteral("PATH")).toString();
        r.file = set.value(i, QStringLiteral("FILE")).toString();
        r.tipoFonte = set.value(i, QStringLiteral("TIPOFONTE")).toString();
        r.collegatoAPath = set.value(i, QStringLiteral("COLLEGATOAPATH")).toString();
        r.collegatoAFile = set.value(i, QStringLiteral("COLLEGATOAFILE")).toString();
        rows << r;
    }
    return rows;
}

Status updateStaged(const ReferenceDb &db, const QList<StagedField> &rows)
{
    QStringList statements;
    for (const StagedField &r : rows)
        statements << QStringLiteral("UPDATE STRUCTJOIN SET INCLUSO=") + boolText(r.incluso) +
                          QStringLiteral(", ALIASCAMPO=") + sqlQuote(r.aliasCampo) + QStringLiteral(", NOMECONFLITTO=") +
                          sqlQuote(r.nomeConflitto) + QStringLiteral(" WHERE NOMECAMPO=") + sqlQuote(r.nomeCampo);
    return db.executeAll(statements);
}

Status validateAlias(const QString &alias, int row, const QList<StagedField> &rows, const StructureTable &structure)
{
    for (int i = 0; i < rows.size(); ++i) {
        if (i == row)
            continue;
        if (rows[i].aliasCampo.toUpper() == alias.toUpper())
            return Status::fail(QStringLiteral("alias = ") + alias + QStringLiteral(" è gia presente come alias.") +
                                JoinText::kCrLf + JoinText::kAliasUnique);
        if (rows[i].nomeCampo.toUpper() == alias.toUpper())
            return Status::fail(QStringLiteral("campo = ") + alias +
                                QStringLiteral(" è gia presente come nome campo.") + JoinText::kCrLf +
                                JoinText::kAliasUnique);
    }
    if (structure.findByLabel(alias) || structure.findByAlias(alias))
        return Status::fail(alias + QStringLiteral(" è in conflitto con il Database di Mervola."));
    return {};
}

Status checkIncludedFields(const QList<StagedField> &rows)
{
    for (const StagedField &r : rows)
        if (r.incluso && !isImportable(r.tipoCampo))
            return Status::fail(JoinText::kUnsupportedIncluded);
    // The name the column gets in the table: a long field name passes once
    // it has a short alias.
    for (const StagedField &r : rows)
        if (r.incluso && r.outputName().size() > 10)
            return Status::fail(JoinText::kNameTooLong);
    return {};
}

Status checkFieldCount(int themeFieldCount, int includedCount)
{
    if (themeFieldCount + includedCount > 255)
        return Status::fail(JoinText::kTooManyFields);
    return {};
}

QString joinSummary(const QString &extTable, const QString &themeTable, const QString &extField,
                    const QString &themeField)
{
    return QStringLiteral("Collega la tabella ") + extTable + QStringLiteral(" con la tabella del tema ") + themeTable +
           QStringLiteral(" quando il contenuto del campo ") + extField + QStringLiteral(" della tabella ") + extTable +
           QStringLiteral(" è uguale al contenuto del campo ") + themeField +
           QStringLiteral(" della tabella del tema ") + themeTable;
}

bool isUnresolvedConflict(const StagedField &row)
{
    return row.conflitto && row.nomeConflitto.toUpper() == QStringLiteral("Z") + row.nomeCampo.toUpper();
}

QString prepareSelect(const QList<StagedField> &rows)
{
    QString sql = QStringLiteral("SELECT");
    for (const StagedField &r : rows) {
        if (!r.incluso)
            continue;
        QString item;
        if (r.conflitto)
            item = r.nomeCampo + QStringLiteral(" AS [") + r.nomeConflitto + QStringLiteral("] ");
        else if (r.aliasCampo.toUpper() != r.nomeCampo.toUpper())
            item = QLatin1Char('[') + r.nomeCampo + QStringLiteral("] AS [") + r.aliasCampo + QStringLiteral("] ");
        else
            item = r.nomeCampo;
        sql += QLatin1Char(' ') + item + QLatin1Char(',');
    }
    if (sql.endsWith(QLatin1Char(',')))
        sql.chop(1);
    return sql;
}

Result<QString> PrepareSelect(const ReferenceDb &db, const QString &themeFile)
{
    auto rows = readStaged(db, QStringLiteral("where (INCLUSO=-1 and collegatoAFile = ") + sqlQuote(themeFile) +
                                   QStringLiteral(")"));
    if (!rows)
        return rows.error();
    return prepareSelect(rows.value());
}

}  // namespace mervola
