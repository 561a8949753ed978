// mervola-cli join / unjoin: an external table joined to a theme's table,
// and removed again, with the checks, messages and roll-back of the join
// wizard and of "Elimina Join".
#include "cli/Commands.h"
#include "platform/AtlasHome.h"
#include "project/JoinScript.h"

#include <cstdio>

namespace mervola::cli
{

namespace
{

const char *const kJoinHelp = "Uso: mervola-cli join --home CARTELLA --theme TEMA --source FILE [--table TABELLA]\n"
                              "                      --theme-key CAMPO --source-key CAMPO [--fields C1,C2,...]\n"
                              "\n"
                              "Collega una tabella esterna alla tabella del tema, come la procedura\n"
                              "\"Collega fonte dati esterna\": i campi scelti si aggiungono alla tabella\n"
                              "del tema, il collegamento si registra nel database di riferimento e nel\n"
                              "file delle impostazioni del tema.\n"
                              "\n"
                              "  --home CARTELLA     cartella dell'atlante\n"
                              "  --theme TEMA        tema a cui collegare i dati (es. comuni, cmont_05)\n"
                              "  --source FILE       tabella esterna: Access (.mdb), dBase (.dbf) o testo\n"
                              "                      (.txt, .csv; separatore punto e virgola, tabulazione\n"
                              "                      o virgola; virgola decimale ammessa)\n"
                              "  --table TABELLA     tabella del database Access (obbligatoria per .mdb)\n"
                              "  --theme-key CAMPO   campo di collegamento del tema (nome del campo o\n"
                              "                      descrizione, es. COD_ISTAT o \"Codice ISTAT\")\n"
                              "  --source-key CAMPO  campo di collegamento della tabella esterna (testo)\n"
                              "  --fields C1,C2,...  campi da collegare, ciascuno anche come CAMPO=alias;\n"
                              "                      senza questa opzione tutti i campi importabili\n"
                              "\n"
                              "Un campo con lo stesso nome di un campo del tema prende il nome \"z\" + nome.\n"
                              "Esce con 0 se il collegamento riesce; altrimenti scrive il messaggio\n"
                              "sull'errore standard, esce con 1 e non modifica nulla.\n";

const char *const kUnjoinHelp = "Uso: mervola-cli unjoin --home CARTELLA --theme TEMA\n"
                                "\n"
                                "Elimina il collegamento con dati esterni del tema, come \"Elimina Join\":\n"
                                "la tabella del tema torna quella originale, le registrazioni del\n"
                                "collegamento si cancellano e un tema classificato su un campo collegato\n"
                                "torna al suo simbolo semplice.\n"
                                "\n"
                                "  --home CARTELLA     cartella dell'atlante\n"
                                "  --theme TEMA        tema da scollegare\n"
                                "\n"
                                "Esce con 0 se il collegamento è stato eliminato; altrimenti scrive il\n"
                                "messaggio sull'errore standard, esce con 1 e non modifica nulla.\n";

int refuse(const QString &message)
{
    std::fprintf(stderr, "%s\n", message.toUtf8().constData());
    return 1;
}

Result<AtlasHome> homeOf(const QStringList &args)
{
    const AtlasHome home = AtlasHome::locate(option(args, QStringLiteral("--home")));
    if (!home.exists())
        return Result<AtlasHome>::fail(QStringLiteral("Cartella dell'atlante non trovata: ") + home.root());
    return home;
}

} // namespace

int cmdJoin(const QStringList &args)
{
    if (flag(args, QStringLiteral("--help"))) {
        std::fputs(kJoinHelp, stdout);
        return 0;
    }
    ScriptedJoin join;
    join.theme = option(args, QStringLiteral("--theme"));
    join.source = option(args, QStringLiteral("--source"));
    join.table = option(args, QStringLiteral("--table"));
    join.themeKey = option(args, QStringLiteral("--theme-key"));
    join.sourceKey = option(args, QStringLiteral("--source-key"));
    const QString fields = option(args, QStringLiteral("--fields"));
    if (!fields.isEmpty())
        join.fields = fields.split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (join.theme.isEmpty() || join.source.isEmpty() || join.themeKey.isEmpty() || join.sourceKey.isEmpty())
        return fail(
            QStringLiteral("occorrono --theme, --source, --theme-key e --source-key (mervola-cli join --help)"));
    auto home = homeOf(args);
    if (!home)
        return refuse(home.errorMessage());
    auto outcome = runScriptedJoin(*home, join);
    if (!outcome)
        return refuse(outcome.errorMessage());
    std::printf("%s\n", QStringLiteral("Collegati al tema %1 i campi: %2")
                            .arg(join.theme, outcome->addedFields.join(QStringLiteral(", ")))
                            .toUtf8()
                            .constData());
    return 0;
}

int cmdUnjoin(const QStringList &args)
{
    if (flag(args, QStringLiteral("--help"))) {
        std::fputs(kUnjoinHelp, stdout);
        return 0;
    }
    const QString theme = option(args, QStringLiteral("--theme"));
    if (theme.isEmpty())
        return fail(QStringLiteral("occorre --theme (mervola-cli unjoin --help)"));
    auto home = homeOf(args);
    if (!home)
        return refuse(home.errorMessage());
    if (Status st = runScriptedUnjoin(*home, theme); !st)
        return refuse(st.errorMessage());
    return 0;
}

} // namespace mervola::cli
