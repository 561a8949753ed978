#include "cli/Commands.h"

#include <QTextStream>
#include <cstdio>

namespace mervola::cli {

namespace {

const char *const kBuildAtlasHelp =
    "Costruisce un atlante (dati/, italia/, originali/, supporto/, mervola.html) nella cartella\n"
    "indicata, dai dati di origine (confini, attributi dei comuni, capoluoghi) o, con --demo,\n"
    "l'atlante dimostrativo di 94 comuni usato dalle prove. Una cartella non vuota che non\n"
    "contiene un atlante non viene toccata; un atlante esistente è sostituito solo a lavoro finito.\n"
    "\n"
    "  --sources DIR         cartella dei dati di origine (comuni_attributi.csv, boundaries/)\n"
    "  --home DIR            cartella dell'atlante da creare o sostituire\n"
    "  --membership FILE     tabella CSV (codice ISTAT, codice comunità, nome) che sostituisce\n"
    "                        la derivazione delle comunità montane\n"
    "  --demo                atlante dimostrativo al posto dei dati di origine\n";

const char *const kSqlHelp =
    "Esegue un'istruzione SQL in stile Jet e scrive il risultato in CSV sullo standard output.\n"
    "\n"
    "  --folder DIR          una cartella di tabelle dBase (.dbf); SELECT ... INTO scrive un nuovo .dbf\n"
    "  --home DIR            il database di riferimento dell'atlante (dati/mervola.sqlite)\n";

const char *const kRenderHelp =
    "Disegna la carta di un atlante in un file immagine. Il formato segue l'estensione:\n"
    "png, bmp, emf, svg o pdf. Senza --project si usa il progetto iniziale dell'atlante.\n"
    "L'atlante non viene modificato.\n"
    "\n"
    "  --home DIR            cartella dell'atlante (altrimenti $MERVOLA_HOME o la cartella XDG)\n"
    "  --project FILE.rlx    progetto da disegnare\n"
    "  --size LxA            dimensione in pixel (predefinita 1600x1200)\n"
    "  --out FILE            file da scrivere\n"
    "  --region NN           la regione NN (01-20, 00 = tutta l'Italia, oppure il nome come nella\n"
    "                        casella \"Visualizza\"): i temi, l'estensione e la tabella delle\n"
    "                        comunità montane che la casella sceglie per quella regione\n"
    "  --all-regions DIR     una carta per regione più tutta l'Italia (21 file) nella cartella DIR,\n"
    "                        con nomi come 00_italia.png, 01_piemonte.png, 02_valle_d_aosta.png\n"
    "  --format FMT          formato dei file di --all-regions: png (predefinito), bmp, emf, svg, pdf\n";

const char *const kClassifyHelp = "Calcola le classi di un campo di un tema con gli stessi metodi della finestra di\n"
                                  "classificazione e le scrive in JSON sullo standard output (le domande prendono la\n"
                                  "risposta predefinita). Esce con 1 se la classificazione è rifiutata.\n"
                                  "\n"
                                  "  --home DIR            cartella dell'atlante\n"
                                  "  --theme NOME          tema (es. comuni, commont, comu_01)\n"
                                  "  --field CAMPO         campo da classificare\n"
                                  "  --method METODO       quantile, regolari, unico o naturali (limiti dell'utente)\n"
                                  "  --classes N           numero di classi (predefinito 5)\n"
                                  "  --ramp N              scala di colori\n";

const char *const kJoinHelp = "Collega una tabella esterna alla tabella del tema, come la procedura\n"
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

const char *const kUnjoinHelp = "Elimina il collegamento con dati esterni del tema, come \"Elimina Join\":\n"
                                "la tabella del tema torna quella originale, le registrazioni del\n"
                                "collegamento si cancellano e un tema classificato su un campo collegato\n"
                                "torna al suo simbolo semplice.\n"
                                "\n"
                                "  --home CARTELLA     cartella dell'atlante\n"
                                "  --theme TEMA        tema da scollegare\n"
                                "\n"
                                "Esce con 0 se il collegamento è stato eliminato; altrimenti scrive il\n"
                                "messaggio sull'errore standard, esce con 1 e non modifica nulla.\n";

void printUsage(FILE *to)
{
    QTextStream out(to);
    out << "Uso: mervola-cli COMANDO [opzioni]\n"
           "     mervola-cli COMANDO --help\n"
           "     mervola-cli --version\n\n"
           "Comandi:\n";
    for (const Command &c : commands())
        out << "  mervola-cli " << c.usage << "\n";
    out << "\nCodici di uscita: 0 riuscito, 1 operazione non riuscita, 2 riga di comando errata.\n";
}

}  // namespace

const std::vector<Command> &commands()
{
    static const std::vector<Command> list = {
        {"build-atlas", "build-atlas --sources DIR --home DIR [--membership FILE.csv] | build-atlas --demo --home DIR",
         cmdBuildAtlas, kBuildAtlasHelp},
        {"sql", "sql (--folder DIR | --home DIR) \"ISTRUZIONE\"", cmdSql, kSqlHelp},
        {"render",
         "render [--home DIR] [--project FILE.rlx] [--size LxA] (--out FILE [--region NN] | --all-regions DIR "
         "[--format FMT])",
         cmdRender, kRenderHelp},
        {"classify",
         "classify --home DIR --theme NOME --field CAMPO --method quantile|regolari|unico|naturali [--classes N] [--ramp N]",
         cmdClassify, kClassifyHelp},
        {"join",
         "join --home CARTELLA --theme TEMA --source FILE [--table TABELLA] --theme-key CAMPO --source-key CAMPO "
         "[--fields C1,C2,...]",
         cmdJoin, kJoinHelp},
        {"unjoin", "unjoin --home CARTELLA --theme TEMA", cmdUnjoin, kUnjoinHelp},
    };
    return list;
}

QString versionText(const QString &program)
{
    return QStringLiteral("%1 %2").arg(program, QStringLiteral(MERVOLA_VERSION));
}

int run(const QStringList &arguments)
{
    const QString name = arguments.value(1);
    if (name == QLatin1String("--help") || name == QLatin1String("-h") || name == QLatin1String("help")) {
        printUsage(stdout);
        return kExitOk;
    }
    if (name == QLatin1String("--version")) {
        std::printf("%s\n", versionText(QStringLiteral("mervola-cli")).toUtf8().constData());
        return kExitOk;
    }
    if (name.isEmpty()) {
        printUsage(stderr);
        return kExitUsage;
    }
    for (const Command &c : commands()) {
        if (name != QLatin1String(c.name))
            continue;
        const QStringList args = arguments.mid(2);
        if (args.contains(QStringLiteral("--help")) || args.contains(QStringLiteral("-h"))) {
            std::printf("Uso: mervola-cli %s\n%s%s", c.usage, c.help ? "\n" : "", c.help ? c.help : "");
            return kExitOk;
        }
        return c.fn(args);
    }
    printUsage(stderr);
    return usageError(QStringLiteral("comando sconosciuto: %1").arg(name));
}

}  // namespace mervola::cli
