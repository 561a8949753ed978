#pragma once
// frmInfor: the elements found under a click of the information tool, one
// row per theme, and the chosen element's fields (or, for the mountain
// communities, a row of an indicator category table).

#include "data/ElementInfo.h"

#include <QDialog>

class QComboBox;
class QStatusBar;
class QTableWidget;
class QTreeWidget;

namespace mervola {

class FrmInfor : public QDialog {
    Q_OBJECT
public:
    // `categories` are the names of CATEGORIE in code order.
    FrmInfor(const QString &currentTheme, QList<FoundElement> found, const QStringList &categories,
             ReferenceDb db, QWidget *parent = nullptr);
    void showRow(int row);
    void chooseCategory(int index);

private:
    void fillFields(const QList<QPair<QString, QString>> &fields);

    QList<FoundElement> m_found;
    ReferenceDb m_db;
    int m_row = -1;
    QTableWidget *m_themes = nullptr;
    QTreeWidget *m_fields = nullptr;
    QComboBox *m_categories = nullptr;
    QStatusBar *m_status = nullptr;
};

}  // namespace mervola
