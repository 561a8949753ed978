#pragma once
// A small atlas home for the join tests: an empty reference database, one
// municipality table in italia/ (with its pristine copy in originali/) and a
// folder for external tables.

#include "platform/AtlasHome.h"
#include "platform/dbf/DbfTable.h"
#include "project/JoinExecute.h"
#include "project/JoinSource.h"
#include "project/JoinStaging.h"
#include "project/ReferenceDb.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QTemporaryDir>

namespace mervola::test {

inline DbfField textField(const QString &name, int width = 20) { return {name, DbfType::Text, width, 0}; }
inline DbfField numberField(const QString &name) { return {name, DbfType::Numeric, 11, 0}; }

struct JoinFixture {
    QTemporaryDir dir;
    AtlasHome home{dir.path()};
    ReferenceDb db{home};

    JoinFixture()
    {
        for (const char *sub : {"dati", "italia", "originali", "supporto", "ext"})
            QDir(dir.path()).mkpath(QString::fromLatin1(sub));
        static_cast<void>(ReferenceDb::createSchema(home.referenceDb()));
        DbfTable theme;
        theme.fields = {textField(QStringLiteral("Label")), textField(QStringLiteral("PROG_MONT"), 10),
                        numberField(QStringLiteral("I010"))};
        theme.rows = {{QStringLiteral("Aosta"), QStringLiteral("001"), 10LL},
                      {QStringLiteral("Brusson"), QStringLiteral("002"), 20LL},
                      {QStringLiteral("Cogne"), QStringLiteral("003"), 30LL}};
        static_cast<void>(writeDbf(themeDbf(), theme));
        static_cast<void>(writeDbf(home.originali() + QStringLiteral("/comu_01.dbf"), theme));
    }

    QString themeShp() const { return home.italia() + QStringLiteral("/comu_01.shp"); }
    QString themeDbf() const { return home.italia() + QStringLiteral("/comu_01.dbf"); }
    QString extFolder() const { return dir.path() + QStringLiteral("/ext"); }

    QString writeExternal(const QString &file, const DbfTable &table) const
    {
        static_cast<void>(writeDbf(extFolder() + QLatin1Char('/') + file, table));
        return file;
    }

    // Stages every field of the source, as the wizard does before step 3.
    Status stage(const QString &type, const QString &file, const QString &table = {}) const
    {
        auto source = readSource(type, extFolder(), file, table);
        if (!source)
            return Status(source.error());
        const StagingContext ctx{type, extFolder(), file, home.italia(), QStringLiteral("comu_01")};
        return stageFields(db, stagedRowsFor(ctx, source->fields,
                                             {QStringLiteral("Label"), QStringLiteral("PROG_MONT"),
                                              QStringLiteral("I010")}));
    }

    JoinRequest request(const QString &type, const QString &file, const QString &extField,
                        const QString &table = {}) const
    {
        JoinRequest r;
        r.shapefilePath = themeShp();
        r.sourceType = type;
        r.sourceFolder = extFolder();
        r.sourceFile = file;
        r.sourceTable = table.isEmpty() ? file : table;
        r.themeJoinField = QStringLiteral("PROG_MONT");
        r.extJoinField = extField;
        r.layerIndex = 2;
        return r;
    }
};

}  // namespace mervola::test
