#pragma once
// queryDbf: composes a condition over the attribute table's fields and makes
// it the attribute table window's filter.

#include "data/TableQuery.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QPlainTextEdit;

namespace mervola {

class FrmDbf;

class QueryDbf : public QDialog {
    Q_OBJECT
public:
    explicit QueryDbf(FrmDbf &window, QWidget *parent = nullptr);

    QString condition() const;
    void setCondition(const QString &text);
    // Runs the condition (the "Esegui query" button); closes on success.
    QueryOutcome execute();

private:
    void chooseField(QListWidgetItem *item);
    void listValues();
    void insertText(const QString &text);

    FrmDbf &m_window;
    QList<QueryField> m_fields;
    int m_chosen = -1;
    QListWidget *m_fieldList = nullptr;
    QListWidget *m_values = nullptr;
    QLabel *m_selected = nullptr;
    QPlainTextEdit *m_text = nullptr;
    QCheckBox *m_preview = nullptr;
};

}  // namespace mervola
