// The join wizard's checks: source file names, staging rows with their name
// conflicts, the text-key requirement, aliases, included fields, the field
// limit and the column list of the join.
#include "test_join_fixture.h"

#include "project/StructureTable.h"

#include <QtTest>

using namespace mervola;
using namespace mervola::test;

namespace {

StagedField row(const QString &name, const QString &alias, int type = JoinFieldType::Text)
{
    StagedField r;
    r.nomeCampo = name;
    r.aliasCampo = alias;
    r.tipoCampo = type;
    return r;
}

}  // namespace

class TestJoinStaging : public QObject {
    Q_OBJECT

private slots:
    void sourceFileName_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("message");
        const QString crlf = QStringLiteral("\r\n");
        QTest::newRow("dbase 8") << JoinSourceType::DbaseIV << "miofile1.dbf" << QString();
        QTest::newRow("dbase 11") << JoinSourceType::DbaseIV << "miofile1999.dbf"
                                  << "MIOFILE1999.DBF nome file non valido." + crlf +
                                         "Il nome del file non deve superare gli 8 caratteri (estensione esclusa):" +
                                         crlf + "miofile1.dbf  -> corretto " + crlf + "miofile1999.dbf -> errato.";
        QTest::newRow("text 9") << JoinSourceType::Text << "dati_2001.txt"
                                << "DATI_2001.TXT nome file non valido." + crlf +
                                       "Il nome del file non deve superare gli 8 caratteri (estensione esclusa):" +
                                       crlf + "miofile1.txt  -> corretto " + crlf + "miofile1999.txt -> errato.";
        QTest::newRow("access long") << JoinSourceType::Access << "archivio_comuni.mdb" << QString();
    }
    void sourceFileName()
    {
        QFETCH(QString, type);
        QFETCH(QString, file);
        QFETCH(QString, message);
        QCOMPARE(checkSourceFileName(type, file).errorMessage(), message);
    }

    void forbiddenCharacters()
    {
        QVERIFY(hasForbiddenFileCharacters(QStringLiteral("dati?.dbf")));
        QVERIFY(hasForbiddenFileCharacters(QStringLiteral("a|b.txt")));
        QVERIFY(!hasForbiddenFileCharacters(QStringLiteral("dati 01.dbf")));
    }

    void fieldCount_data()
    {
        QTest::addColumn<int>("themeFields");
        QTest::addColumn<int>("included");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("200 + 55") << 200 << 55 << true;
        QTest::newRow("200 + 56") << 200 << 56 << false;
        QTest::newRow("255 + 0") << 255 << 0 << true;
    }
    void fieldCount()
    {
        QFETCH(int, themeFields);
        QFETCH(int, included);
        QFETCH(bool, accepted);
        const Status st = checkFieldCount(themeFields, included);
        QCOMPARE(st.ok(), accepted);
        if (!accepted)
            QCOMPARE(st.errorMessage(), QStringLiteral("Impossibile collegare la tabella. Il numero di campi supera 255."));
    }

    void stagingMarksConflictsAndKeepsRows()
    {
        JoinFixture fx;
        DbfTable ext;
        ext.fields = {textField(QStringLiteral("prog_mont")), numberField(QStringLiteral("POP")),
                      {QStringLiteral("ATTIVO"), DbfType::Logical, 1, 0}, {QStringLiteral("DATA"), DbfType::Date, 8, 0}};
        fx.writeExternal(QStringLiteral("ext.dbf"), ext);
        QVERIFY(fx.stage(JoinSourceType::DbaseIV, QStringLiteral("ext.dbf")).ok());
        auto rows = readStaged(fx.db);
        QVERIFY(rows.ok());
        QCOMPARE(rows->size(), 4);
        QVERIFY(rows->at(0).conflitto);
        QCOMPARE(rows->at(0).nomeConflitto, QStringLiteral("zprog_mont"));
        QVERIFY(isUnresolvedConflict(rows->at(0)));
        QCOMPARE(rows->at(0).collegatoAFile, QStringLiteral("comu_01"));
        QCOMPARE(rows->at(0).strTipoCampo, QStringLiteral("Alfanumerico"));
        QCOMPARE(rows->at(1).strTipoCampo, QStringLiteral("Numerico"));
        QCOMPARE(rows->at(2).strTipoCampo, QStringLiteral("Booleano"));
        QCOMPARE(rows->at(3).strTipoCampo, QStringLiteral("Non riconosciuto"));
        QVERIFY(!rows->at(1).conflitto);
        QVERIFY(rows->at(1).incluso);

        // A field of a kind a join cannot import starts excluded; included,
        // it stops the second step; excluding it again passes.
        QVERIFY(!rows->at(3).incluso);
        (*rows)[3].incluso = true;
        QCOMPARE(checkIncludedFields(rows.value()).errorMessage(), JoinText::kUnsupportedIncluded);
        (*rows)[3].incluso = false;
        (*rows)[0].nomeConflitto = QStringLiteral("codcm");
        QVERIFY(checkIncludedFields(rows.value()).ok());
        QVERIFY(updateStaged(fx.db, rows.value()).ok());
        auto again = readStaged(fx.db, QStringLiteral("where CONFLITTO=-1"));
        QCOMPARE(again->size(), 1);
        QVERIFY(!isUnresolvedConflict(again->at(0)));
        QCOMPARE(PrepareSelect(fx.db, QStringLiteral("comu_01")).value(),
                 QStringLiteral("SELECT prog_mont AS [codcm] , POP, ATTIVO"));
    }

    void onlyNumericFieldsRefused()
    {
        JoinFixture fx;
        DbfTable ext;
        ext.fields = {numberField(QStringLiteral("ISTAT")), numberField(QStringLiteral("POP"))};
        fx.writeExternal(QStringLiteral("num.dbf"), ext);
        QCOMPARE(fx.stage(JoinSourceType::DbaseIV, QStringLiteral("num.dbf")).errorMessage(),
                 QStringLiteral("Impossibile collegare la tabella. Non ci sono campi di tipo alfanumerico."));
        // The rows stay staged for the wizard.
        QCOMPARE(readStaged(fx.db)->size(), 2);
    }

    void fieldNameLongerThanTenRefused()
    {
        QList<StagedField> rows{row(QStringLiteral("CODICE"), QStringLiteral("CODICE")),
                                row(QStringLiteral("POPOLAZIONE"), QStringLiteral("POPOLAZIONE"), JoinFieldType::Long)};
        QCOMPARE(checkIncludedFields(rows).errorMessage(),
                 QStringLiteral("La lunghezza del nome del campo non può superare i 10 caratteri."));
        rows[1].aliasCampo = QStringLiteral("popolaz");  // a short alias is the column's name
        QVERIFY(checkIncludedFields(rows).ok());
        rows[1].aliasCampo = QStringLiteral("POPOLAZIONE");
        rows[1].incluso = false;
        QVERIFY(checkIncludedFields(rows).ok());
    }

    void alias_data()
    {
        QTest::addColumn<QString>("alias");
        QTest::addColumn<QString>("message");
        const QString unique = QStringLiteral("\r\nL'alias deve essere univoco.");
        QTest::newRow("free") << "popol" << QString();
        QTest::newRow("own name") << "codice" << QString();
        QTest::newRow("other alias") << "abitanti" << "alias = abitanti è gia presente come alias." + unique;
        QTest::newRow("other field") << "pop" << "campo = pop è gia presente come nome campo." + unique;
        QTest::newRow("structure") << "i010" << "i010 è in conflitto con il Database di Mervola.";
    }
    void alias()
    {
        QFETCH(QString, alias);
        QFETCH(QString, message);
        const QList<StagedField> rows{row(QStringLiteral("CODICE"), QStringLiteral("CODICE")),
                                      row(QStringLiteral("POP"), QStringLiteral("ABITANTI"), JoinFieldType::Long)};
        StructureTable structure;
        structure.rows.push_back({QStringLiteral("I010"), QStringLiteral("Popolazione"), QStringLiteral("commont"),
                                  QStringLiteral("-1"), QStringLiteral("0")});
        QCOMPARE(validateAlias(alias, 0, rows, structure).errorMessage(), message);
    }

    void prepareSelectNamesColumns()
    {
        StagedField conflict = row(QStringLiteral("Label"), QStringLiteral("Label"));
        conflict.conflitto = true;
        conflict.nomeConflitto = QStringLiteral("zLabel");
        StagedField excluded = row(QStringLiteral("NOTE"), QStringLiteral("NOTE"));
        excluded.incluso = false;
        const QList<StagedField> rows{row(QStringLiteral("COD"), QStringLiteral("cod")), conflict,
                                      row(QStringLiteral("POP"), QStringLiteral("abitanti")), excluded};
        QCOMPARE(prepareSelect(rows), QStringLiteral("SELECT COD, Label AS [zLabel] , [POP] AS [abitanti] "));
        QCOMPARE(prepareSelect({}), QStringLiteral("SELECT"));
    }

    void summarySentence()
    {
        QCOMPARE(joinSummary("dati", "comu_01", "COD", "PROG_MONT"),
                 QStringLiteral("Collega la tabella dati con la tabella del tema comu_01 quando il contenuto del campo "
                                "COD della tabella dati è uguale al contenuto del campo PROG_MONT della tabella del "
                                "tema comu_01"));
    }

    void textSourceTypes()
    {
        JoinFixture fx;
        QVERIFY(writeFile(fx.extFolder() + QStringLiteral("/t.txt"),
                          "COD,VAL,QUOTA,NOTE\n\"001\",12,1.5,a\n\"002\",,2,\"b, c\"\n"));
        auto src = readTextSource(fx.extFolder() + QStringLiteral("/t.txt"));
        QVERIFY(src.ok());
        QCOMPARE(src->fields.size(), 4);
        QCOMPARE(src->fields[0].engineType, JoinFieldType::Text);
        QCOMPARE(src->fields[1].engineType, JoinFieldType::Long);
        QCOMPARE(src->fields[2].engineType, JoinFieldType::Double);
        QCOMPARE(src->table.rows[1][3].toString(), QStringLiteral("b, c"));
        QVERIFY(src->table.rows[1][1].isNull());
    }
};

QTEST_GUILESS_MAIN(TestJoinStaging)
#include "test_join_staging.moc"
