#pragma once
// frmquery: composes a condition on the table of one of the map's themes,
// runs it and shows the elements found on the map.
//
// Wiring: the main window lists its themes as QueryTheme values and
// implements MapSelectionHost (select the elements matching an expression
// on a theme's layer, highlight them, zoom to them), then calls
// openMapQuery(this, themes, host, activeThemeName).

#include "data/AttributeTableCatalog.h"
#include "data/MapQuery.h"
#include "platform/dbf/DbfFolder.h"

#include <QDialog>
#include <optional>

class QCheckBox;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QPlainTextEdit;

namespace mervola
{

class FrmQuery : public QDialog
{
    Q_OBJECT
public:
    // `catalog` names the fields of the community and municipality tables
    // by their descriptions, as the table query does.
    FrmQuery(QList<QueryTheme> themes, MapSelectionHost &host, IndicatorCatalog catalog = {},
             QWidget *parent = nullptr);
    // Chooses the theme of that map name (the active theme when opened).
    void chooseTheme(const QString &name);

private:
    void themeChosen(int row);
    void fieldChosen(int row);
    void fieldClicked(QListWidgetItem *item);
    void previewToggled(bool on);
    void fillValues();
    void insertText(const QString &piece);
    void runQuery();
    void findChosen();
    void clearQuery();
    const QueryTheme *theme() const;

    QList<QueryTheme> m_themes;
    MapSelectionHost &m_host;
    std::optional<DbfFolder> m_folder;
    QString m_table;
    QList<MapQueryField> m_fields;
    IndicatorCatalog m_catalog;
    bool m_fieldJustChosen = false;

    QListWidget *m_temi = nullptr;
    QListWidget *m_campi = nullptr;
    QListWidget *m_valori = nullptr;
    QLabel *m_selected = nullptr;
    QPlainTextEdit *m_query = nullptr;
    QCheckBox *m_ante = nullptr;
    QListWidget *m_elementi = nullptr;
};

// Opens the query builder over the themes, on `activeTheme` when given.
void openMapQuery(QWidget *parent, const QList<QueryTheme> &themes, MapSelectionHost &host, IndicatorCatalog catalog,
                  const QString &activeTheme = {});

} // namespace mervola
