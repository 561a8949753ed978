#include "app/CommandTable.h"

namespace mervola {

const std::vector<ToolbarButton> &toolbarButtons()
{
    static const std::vector<ToolbarButton> buttons = {
        {QStringLiteral("apri"), QStringLiteral("Apri Progetto"), false},
        {QStringLiteral("salva"), QStringLiteral("Salva Progetto"), false},
        {QStringLiteral("stampa"), QStringLiteral("Stampa la mappa"), false},
        {QStringLiteral("totale"), QStringLiteral("Vista globale"), false},
        {QStringLiteral("cerca"), QStringLiteral("Trova"), false},
        {QStringLiteral("query"), QStringLiteral("Query Builder"), false},
        {QStringLiteral("tooltip"), QStringLiteral("Abilita/disabilita tooltips"), true},
        {QStringLiteral("info"), QStringLiteral("Informazioni"), true},
        {QStringLiteral("zoomin"), QStringLiteral("Zoom in proporzionale"), true},
        {QStringLiteral("zoomout"), QStringLiteral("Zoom out proporzionale"), true},
        {QStringLiteral("zoomtema"), QStringLiteral("Zoom al tema"), false},
        {QStringLiteral("zoominfix"), QStringLiteral("Zoom in fisso"), false},
        {QStringLiteral("zoomoutfix"), QStringLiteral("Zoom out fisso"), false},
        {QStringLiteral("zoomprec"), QStringLiteral("Zoom alla vista precedente"), false},
        {QStringLiteral("label"), QStringLiteral("Aggiungi etichette"), false},
        {QStringLiteral("nolabel"), QStringLiteral("Rimuovi etichette"), false},
        {QStringLiteral("legenda"), QStringLiteral("Editor della legenda"), false},
        {QStringLiteral("esporta"), QStringLiteral("Esporta mappa"), false},
        {QStringLiteral("dbf"), QStringLiteral("Accesso alla tabella"), false},
        {QStringLiteral("uscita"), QStringLiteral("Esce dall'applicazione"), false},
    };
    return buttons;
}

const QStringList &dispatchOrder()
{
    static const QStringList order = {
        QStringLiteral("apri"),      QStringLiteral("salva"),      QStringLiteral("esporta"),
        QStringLiteral("stampa"),    QStringLiteral("zoomtema"),   QStringLiteral("uscita"),
        QStringLiteral("totale"),    QStringLiteral("zoomin"),     QStringLiteral("pan"),
        QStringLiteral("zoomout"),   QStringLiteral("zoominfix"),  QStringLiteral("zoomoutfix"),
        QStringLiteral("tooltip"),   QStringLiteral("info"),       QStringLiteral("zoomprec"),
        QStringLiteral("query"),     QStringLiteral("cerca"),      QStringLiteral("label"),
        QStringLiteral("nolabel"),   QStringLiteral("legenda"),    QStringLiteral("dbf"),
    };
    return order;
}

const std::vector<Menu> &menuDefinitions()
{
    static const std::vector<Menu> menus = {
        {QStringLiteral("mnuFile"),
         QStringLiteral("&File"),
         {{QStringLiteral("mnuApriProgetto"), QStringLiteral("&Apri Progetto"), QStringLiteral("apri")},
          {QStringLiteral("mnuSalvaProgetto"), QStringLiteral("&Salva Progetto"), QStringLiteral("salva")},
          {QStringLiteral("mnuBar1"), QString(), QString()},
          {QStringLiteral("mnuEsportaMappa"), QStringLiteral("Es&porta mappa"), QStringLiteral("esporta")},
          {QStringLiteral("mnuStampaMappa"), QStringLiteral("S&tampa mappa"), QStringLiteral("stampa")},
          {QStringLiteral("mnuBar2"), QString(), QString()},
          {QStringLiteral("mnuEsci"), QStringLiteral("&Esci"), QStringLiteral("uscita")}}},
        {QStringLiteral("mnuVisualizza"),
         QStringLiteral("&Visualizza"),
         {{QStringLiteral("mnuVistaGlobale"), QStringLiteral("Vista &globale"), QStringLiteral("totale")},
          {QStringLiteral("mnuBar3"), QString(), QString()},
          {QStringLiteral("mnuZoomAvanti"), QStringLiteral("Zoom &avanti"), QStringLiteral("zoominfix")},
          {QStringLiteral("mnuZoomIndietro"), QStringLiteral("Zoom &indietro"), QStringLiteral("zoomoutfix")},
          {QStringLiteral("mnuZoomPrec"), QStringLiteral("Zoom &precedente"), QStringLiteral("zoomprec")}}},
        {QStringLiteral("mnuUtilita"),
         QStringLiteral("&Utilità"),
         {{QStringLiteral("mnuTrova"), QStringLiteral("&Trova"), QStringLiteral("cerca")},
          {QStringLiteral("mnuQuery"), QStringLiteral("&Query builder"), QStringLiteral("query")},
          {QStringLiteral("mnuElimJoin"), QStringLiteral("Elimina &Join"), QString()},
          {QStringLiteral("mnuApriTabella"), QStringLiteral("&Apri tabella"), QStringLiteral("dbf")},
          {QStringLiteral("mnuTool"), QStringLiteral("Abilita/&disabilita tooltips"), QString()},
          {QStringLiteral("mnuBar4"), QString(), QString()},
          {QStringLiteral("mnuInsEtichette"), QStringLiteral("&Inserisci etichette"), QStringLiteral("label")},
          {QStringLiteral("mnuElimEtichette"), QStringLiteral("&Elimina etichette"), QStringLiteral("nolabel")},
          {QStringLiteral("mnuBar5"), QString(), QString()},
          {QStringLiteral("mnulegenda"), QStringLiteral("Editor della &legenda"), QStringLiteral("legenda")}}},
        {QStringLiteral("mnuHelp"),
         QStringLiteral("&?"),
         {{QStringLiteral("mnuGuida"), QStringLiteral("&Guida in linea"), QString()},
          {QStringLiteral("mnuBar6"), QString(), QString()},
          {QStringLiteral("mnuInfo"), QStringLiteral("Informazioni su..."), QString()}}},
    };
    return menus;
}

const QStringList &themeCommandKeys()
{
    static const QStringList keys = {QStringLiteral("cerca"), QStringLiteral("query"),    QStringLiteral("info"),
                                     QStringLiteral("zoomtema"), QStringLiteral("dbf"), QStringLiteral("legenda")};
    return keys;
}

const QStringList &projectCommandKeys()
{
    static const QStringList keys = {QStringLiteral("esporta"), QStringLiteral("apri"), QStringLiteral("salva"),
                                     QStringLiteral("stampa")};
    return keys;
}

const QStringList &mapToolKeys()
{
    static const QStringList keys = {QStringLiteral("zoomin"), QStringLiteral("zoomout"), QStringLiteral("pan"),
                                     QStringLiteral("tooltip"), QStringLiteral("info")};
    return keys;
}

}  // namespace mervola
