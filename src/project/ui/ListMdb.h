#pragma once
// ListMdb: the three-step wizard that joins an external table (Access,
// dBase or text) to the table of a theme. Step 1 chooses the kind of source
// and the file, step 2 the table (Access) and the fields with their aliases,
// step 3 the two join fields; the last button runs the join.
//
// The main window (or the attribute table window) opens it with
// openJoinWizard() and, when a join was made, re-reads the layer's
// attributes (reloadLayerAttributes in project/JoinTheme.h), refreshes the
// map and legend and enables the removal of joins.

#include "platform/AtlasHome.h"
#include "project/JoinExecute.h"
#include "project/JoinStaging.h"
#include "project/StructureTable.h"

#include <QDialog>
#include <functional>
#include <optional>

class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;
class QRadioButton;
class QStackedWidget;
class QStandardItemModel;
class QTableView;

namespace mervola {

// The theme a join goes to.
struct JoinTarget {
    AtlasHome home;
    QString shapefilePath;   // the theme's .shp
    int layerIndex = 0;      // its index on the map
    LayerState layer;        // what the settings rewrite needs
    QString iniPath;         // supporto/<theme>.ini
    StructureTable structure;  // the STRUTTURE rows (alias checks, join fields)
};

namespace ListMdbText {
inline const QString kCaption = QStringLiteral("Collega fonte dati esterna");
inline const QString kStep1 = QStringLiteral("1. Selezionare il tipo di fonte dati da collegare");
inline const QString kStep2 = QStringLiteral("2. Selezione della tabella esterna e definizione degli alias dei campi.");
inline const QString kStep3 = QStringLiteral("3. Definizione del campo di collegamento. ");
inline const QString kDialogTitle = QStringLiteral("Collega fonte dati esterna: ");
}  // namespace ListMdbText

class ListMdb : public QDialog {
    Q_OBJECT
public:
    explicit ListMdb(JoinTarget target, QWidget *parent = nullptr);
    ~ListMdb() override;

    // Asks for the source file (title, filter in the file dialog's form);
    // replaced by tests. Returns an empty path when the user cancels.
    using FileChooser = std::function<QString(const QString &title, const QString &filter)>;
    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }
    // Resolves the name conflicts before the join; defaults to VerifyConflitti.
    using ConflictResolver = std::function<bool()>;
    void setConflictResolver(ConflictResolver resolver) { m_resolveConflicts = std::move(resolver); }

    int step() const;  // 1, 2 or 3
    const std::optional<JoinOutcome> &outcome() const { return m_outcome; }

private:
    void buildStep1(QWidget *page);
    void buildStep2(QWidget *page);
    void buildStep3(QWidget *page);
    void goTo(int step);
    void next();
    void back();
    bool chooseSource();
    void tableChosen();
    bool stage(const SourceTable &source);
    void fillGrid();
    bool readGrid();
    bool enterStep3();
    void updateSummary();
    void finish();
    QString sourceType() const;
    QString externalTable() const;

    JoinTarget m_target;
    ReferenceDb m_db;
    QString m_themeTable;
    QStringList m_themeFields;
    QString m_sourceFolder;
    QString m_sourceFile;
    QString m_accessTable;
    QList<StagedField> m_rows;
    std::optional<JoinOutcome> m_outcome;
    FileChooser m_chooseFile;
    ConflictResolver m_resolveConflicts;

    QLabel *m_title = nullptr;
    QStackedWidget *m_pages = nullptr;
    QRadioButton *m_access = nullptr;
    QRadioButton *m_dbase = nullptr;
    QRadioButton *m_text = nullptr;
    QLabel *m_file = nullptr;
    QLabel *m_tablesLabel = nullptr;
    QListWidget *m_tables = nullptr;
    QTableView *m_grid = nullptr;
    QStandardItemModel *m_model = nullptr;
    QComboBox *m_extField = nullptr;
    QComboBox *m_themeField = nullptr;
    QLabel *m_summary = nullptr;
    QPushButton *m_back = nullptr;
    QPushButton *m_next = nullptr;
    QPushButton *m_cancel = nullptr;
};

// Opens the wizard for a theme; the outcome when a join was made.
std::optional<JoinOutcome> openJoinWizard(QWidget *parent, const JoinTarget &target);

}  // namespace mervola
