#pragma once
// frmSearch: picks one element name of the current theme.

#include <QDialog>

class QComboBox;

namespace mervola {

class FrmSearch : public QDialog {
    Q_OBJECT
public:
    FrmSearch(const QString &themeName, const QStringList &names, QWidget *parent = nullptr);
    QString chosenName() const;

private:
    QComboBox *m_features = nullptr;
};

}  // namespace mervola
