#include "print/ui/FrmFont.h"
#include "platform/ui/DialogButtons.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>
#include <QVBoxLayout>

namespace mervola {

QString familyName(const QString &family)
{
    // The system names a family installed by several foundries once per
    // foundry, as "C059 [UKWN]"; the family alone selects the typeface.
    static const QRegularExpression foundry(QStringLiteral("\\s*\\[[^\\]]*\\]$"));
    return QString(family).remove(foundry).trimmed();
}

QStringList uniqueFamilies(const QStringList &families)
{
    QStringList out;
    QSet<QString> seen;
    for (const QString &f : families) {
        const QString name = familyName(f);
        if (name.isEmpty() || seen.contains(name))
            continue;
        seen.insert(name);
        out << name;
    }
    return out;
}

QStringList installedFontFamilies() { return uniqueFamilies(QFontDatabase::families()); }

FrmFont::FrmFont(QString &chosenFont, QWidget *parent) : FrmFont(chosenFont, installedFontFamilies(), parent) {}

FrmFont::FrmFont(QString &chosenFont, const QStringList &families, QWidget *parent)
    : QDialog(parent), m_chosen(chosenFont)
{
    setObjectName(QStringLiteral("frmFont"));
    setWindowTitle(FontText::kCaption);
    setModal(true);

    auto *label = new QLabel(FontText::kPrompt, this);
    label->setObjectName(QStringLiteral("Label1"));
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("LstFonts"));
    label->setBuddy(m_list);

    const OkCancelRow row = okCancelRow(this, QStringLiteral("cmdOK"), QStringLiteral("cmdAnnulla"));
    QPushButton *ok = row.ok, *cancel = row.cancel;
    QHBoxLayout *buttons = row.layout;
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_list, 1);
    layout->addLayout(buttons);
    resize(320, 360);

    ModFontLister(families);

    connect(m_list, &QListWidget::currentTextChanged, this, [this](const QString &text) { m_selected = text; });
    connect(m_list, &QListWidget::itemDoubleClicked, this, [this] { cmdOK_Click(); });
    connect(ok, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

void FrmFont::ModFontLister(const QStringList &families)
{
    m_list->addItems(uniqueFamilies(families));
    // Start on the caller's current font, so OK without a click keeps it.
    const auto items = m_list->findItems(m_chosen, Qt::MatchFixedString);
    if (!items.isEmpty()) {
        m_list->setCurrentItem(items.front());
        m_selected = items.front()->text();
    }
}

void FrmFont::cmdOK_Click()
{
    if (!m_selected.isEmpty())
        m_chosen = m_selected;
    accept();
}

}  // namespace mervola
