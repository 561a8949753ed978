#pragma once
// JoinConflitti: the external fields whose names are already in the theme
// table, each with the new name it will get in the joined table. The user may
// change the new names; btnContinua goes on with the join.

#include "project/JoinStaging.h"

#include <QDialog>

class QLabel;
class QTableWidget;

namespace mervola {

class JoinConflitti : public QDialog {
    Q_OBJECT
public:
    // `rows` are the staged rows with CONFLITTO = -1; `taken` the names
    // already used by the theme table and the other joined columns.
    JoinConflitti(const QList<StagedField> &rows, const QStringList &taken, QWidget *parent = nullptr);

    // The rows with the new names as edited.
    QList<StagedField> rows() const { return m_rows; }

private:
    void refreshStatus();
    void nameEdited(int row, int column);

    QList<StagedField> m_rows;
    QStringList m_taken;
    QTableWidget *m_grid = nullptr;
    QLabel *m_status = nullptr;
    bool m_filling = false;
};

// Shows the conflict window when any staged row of the theme table has
// CONFLITTO = -1 and writes the new names back to STRUCTJOIN. False when
// the user cancels or the staging table cannot be read (message shown).
bool VerifyConflitti(const ReferenceDb &db, const QString &themeTable, const QStringList &themeFields,
                     QWidget *parent);

}  // namespace mervola
