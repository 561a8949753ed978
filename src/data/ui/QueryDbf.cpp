#include "data/ui/QueryDbf.h"

#include "data/AttributeTableTexts.h"
#include "data/ui/FrmDbf.h"
#include "platform/Messages.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

namespace mervola {

QueryDbf::QueryDbf(FrmDbf &window, QWidget *parent) : QDialog(parent), m_window(window)
{
    setObjectName(QStringLiteral("queryDbf"));
    setWindowTitle(texts::kQueryCaption);
    resize(620, 440);

    m_fieldList = new QListWidget(this);
    m_fieldList->setObjectName(QStringLiteral("lstCampi"));
    m_values = new QListWidget(this);
    m_values->setObjectName(QStringLiteral("lst_valori"));
    m_selected = new QLabel(texts::kOriginalName, this);
    m_selected->setObjectName(QStringLiteral("lbl_selected"));
    m_text = new QPlainTextEdit(this);
    m_text->setObjectName(QStringLiteral("txt_query"));
    m_text->setMaximumHeight(90);
    m_preview = new QCheckBox(QStringLiteral("Anteprima valori"), this);
    m_preview->setObjectName(QStringLiteral("chk_ante"));

    if (AttributeTable *table = m_window.table())
        m_fields = queryFields(*table, m_window.catalog(), m_window.categoryCode());
    for (const QueryField &f : m_fields)
        m_fieldList->addItem(f.shown);

    auto *ops = new QGridLayout;
    const QStringList &captions = operatorCaptions();
    for (int i = 0; i < captions.size(); ++i) {
        auto *b = new QPushButton(captions[i], this);
        b->setObjectName(QStringLiteral("cmd_query_%1").arg(i));
        b->setAutoDefault(false);
        connect(b, &QPushButton::clicked, this, [this, c = captions[i]] { insertText(operatorText(c)); });
        ops->addWidget(b, i / 3, i % 3);
    }

    auto *run = new QPushButton(QStringLiteral("&Esegui query"), this);
    run->setObjectName(QStringLiteral("cmd_esegui"));
    auto *clear = new QPushButton(QStringLiteral("&Annulla"), this);
    clear->setObjectName(QStringLiteral("Command1_0"));
    auto *close = new QPushButton(QStringLiteral("&Chiudi"), this);
    close->setObjectName(QStringLiteral("Command1_1"));
    for (QPushButton *b : {run, clear, close})
        b->setAutoDefault(false);

    auto *grid = new QGridLayout(this);
    grid->addWidget(new QLabel(QStringLiteral("Campi:"), this), 0, 0);
    grid->addWidget(new QLabel(QStringLiteral("Valori:"), this), 0, 2);
    grid->addWidget(m_fieldList, 1, 0);
    grid->addLayout(ops, 1, 1, Qt::AlignTop);
    grid->addWidget(m_values, 1, 2);
    grid->addWidget(m_selected, 2, 0, 1, 2);
    grid->addWidget(m_preview, 2, 2);
    grid->addWidget(m_text, 3, 0, 1, 3);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(run);
    buttons->addWidget(clear);
    buttons->addWidget(close);
    grid->addLayout(buttons, 4, 0, 1, 3);

    connect(m_fieldList, &QListWidget::itemClicked, this, &QueryDbf::chooseField);
    connect(m_values, &QListWidget::itemClicked, this, [this](QListWidgetItem *item) {
        if (m_chosen >= 0)
            insertText(conditionValue(item->text(), m_fields[m_chosen].text));
    });
    connect(m_preview, &QCheckBox::clicked, this, [this](bool on) {
        if (!on) {
            m_values->clear();
            return;
        }
        if (m_chosen < 0) {
            showMessage(MsgStyle::Exclamation, texts::kChooseField);
            m_preview->setChecked(false);
            return;
        }
        listValues();
    });
    connect(run, &QPushButton::clicked, this, &QueryDbf::execute);
    connect(clear, &QPushButton::clicked, m_text, &QPlainTextEdit::clear);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
}

QString QueryDbf::condition() const { return m_text->toPlainText(); }

void QueryDbf::setCondition(const QString &text) { m_text->setPlainText(text); }

void QueryDbf::insertText(const QString &text)
{
    m_text->insertPlainText(text);
    m_text->setFocus();
}

void QueryDbf::chooseField(QListWidgetItem *item)
{
    const int row = m_fieldList->row(item);
    if (row < 0)
        return;
    // The first click names the field; a second click on it writes it into the condition.
    if (row == m_chosen) {
        insertText(QLatin1Char('[') + m_fields[row].name + QLatin1Char(']'));
        return;
    }
    m_chosen = row;
    m_selected->setText(texts::kOriginalName + QLatin1Char(' ') + m_fields[row].name);
    if (m_preview->isChecked())
        listValues();
}

void QueryDbf::listValues()
{
    m_values->clear();
    AttributeTable *table = m_window.table();
    if (!table || m_chosen < 0)
        return;
    auto values = distinctValues(table->folder(), table->table(), m_fields[m_chosen].name);
    if (!values) {
        showMessage(MsgStyle::Critical, values.errorMessage());
        return;
    }
    m_values->addItems(*values);
}

QueryOutcome QueryDbf::execute()
{
    AttributeTable *table = m_window.table();
    if (!table)
        return QueryOutcome::NoCondition;
    const QueryOutcome outcome = runTableQuery(*table, condition());
    switch (outcome) {
    case QueryOutcome::NoCondition:
        showMessage(MsgStyle::Information, texts::kNoValidQuery);
        break;
    case QueryOutcome::NoRecord:
        showMessage(MsgStyle::Exclamation, texts::kNoRecordFound);
        m_window.queryApplied(false);
        break;
    case QueryOutcome::SyntaxError:
        showMessage(MsgStyle::Critical, texts::kQuerySyntax);
        m_window.queryApplied(false);
        break;
    case QueryOutcome::Found:
        m_window.queryApplied(true);
        accept();
        break;
    }
    return outcome;
}

}  // namespace mervola
