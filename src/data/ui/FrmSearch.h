#pragma once
// frmSearch: picks one element name of the current theme.

#include <QDialog>

class QComboBox;
class QStringListModel;

namespace mervola {

class FrmSearch : public QDialog {
    Q_OBJECT
public:
    FrmSearch(const QString &themeName, const QStringList &names, QWidget *parent = nullptr);
    // The chosen name; a name typed without its accents is the listed one.
    QString chosenName() const;

private:
    QStringList m_names;
    QComboBox *m_features = nullptr;
    QStringListModel *m_matches = nullptr;
};

}  // namespace mervola
