#pragma once
// frmFont: the modal font chooser. It lists the installed font families in
// LstFonts in the order the system reports them; OK copies the chosen family
// into the caller's font string, Annulla leaves that string as it was.

#include <QDialog>
#include <QStringList>

class QListWidget;

namespace mervola {

namespace FontText {
inline const QString kCaption = QStringLiteral("Font");
inline const QString kPrompt = QStringLiteral("Selezionare il tipo di carattere:");
}  // namespace FontText

// The installed families, each once, in the order the system gives them.
QStringList installedFontFamilies();
// A family as the system reports it without the foundry it may carry
// ("C059 [UKWN]" gives "C059").
QString familyName(const QString &family);
// Each family once (foundries dropped), first occurrence kept, order unchanged.
QStringList uniqueFamilies(const QStringList &families);

class FrmFont : public QDialog {
    Q_OBJECT
public:
    // `chosenFont` is the caller's font string: written on OK only.
    explicit FrmFont(QString &chosenFont, QWidget *parent = nullptr);
    FrmFont(QString &chosenFont, const QStringList &families, QWidget *parent = nullptr);

    QListWidget *list() const { return m_list; }

private:
    void ModFontLister(const QStringList &families);
    void cmdOK_Click();

    QString &m_chosen;
    QString m_selected;
    QListWidget *m_list = nullptr;
};

}  // namespace mervola
