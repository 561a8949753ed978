#include "data/ui/FrmQuery.h"
#include "platform/FieldNames.h"
#include "data/AttributeTable.h"

#include "platform/Messages.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace mervola
{

namespace
{

QListWidget *list(QWidget *parent, const QString &name)
{
    auto *l = new QListWidget(parent);
    l->setObjectName(name);
    return l;
}

QPushButton *button(QWidget *parent, const QString &name, const QString &caption)
{
    auto *b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

} // namespace

FrmQuery::FrmQuery(QList<QueryTheme> themes, MapSelectionHost &host, IndicatorCatalog catalog, QWidget *parent)
    : QDialog(parent), m_themes(std::move(themes)), m_host(host), m_catalog(std::move(catalog))
{
    setObjectName(QStringLiteral("frmquery"));
    setWindowTitle(querytext::kCaption);

    m_temi = list(this, QStringLiteral("lstTemi"));
    for (const QueryTheme &t : m_themes)
        m_temi->addItem(t.displayName.isEmpty() ? t.name : t.displayName);
    m_campi = list(this, QStringLiteral("lstCampi"));
    m_valori = list(this, QStringLiteral("lstValori"));
    m_elementi = list(this, QStringLiteral("lstElementi"));
    m_selected = new QLabel(querytext::kOriginalName, this);
    m_selected->setObjectName(QStringLiteral("lblSelected"));
    m_ante = new QCheckBox(querytext::kPreview, this);
    m_ante->setObjectName(QStringLiteral("chkAnte"));
    m_query = new QPlainTextEdit(this);
    m_query->setObjectName(QStringLiteral("txtQuery"));
    m_query->setTabChangesFocus(true);

    auto *lists = new QGridLayout;
    lists->addWidget(new QLabel(QStringLiteral("Temi:"), this), 0, 0);
    lists->addWidget(new QLabel(querytext::kFieldsCaption, this), 0, 1);
    lists->addWidget(new QLabel(querytext::kValuesCaption, this), 0, 2);
    lists->addWidget(m_temi, 1, 0);
    lists->addWidget(m_campi, 1, 1);
    lists->addWidget(m_valori, 1, 2);
    lists->addWidget(m_selected, 2, 0, 1, 2);
    lists->addWidget(m_ante, 2, 2);

    // The operator buttons, three to a row as their indexes run.
    auto *ops = new QGridLayout;
    for (int i = 0; i < queryOperators().size(); ++i) {
        QPushButton *b = button(this, QStringLiteral("cmdquery_%1").arg(i), queryOperators().at(i));
        b->setMinimumWidth(48);
        ops->addWidget(b, i / 3, i % 3);
        connect(b, &QPushButton::clicked, this, [this, i] { insertText(operatorInsertion(i)); });
    }
    auto *esegui = button(this, QStringLiteral("cmdEsegui"), querytext::kRun);
    auto *annulla = button(this, QStringLiteral("cmdAnnullaQuery"), querytext::kClear);
    auto *trova = button(this, QStringLiteral("cmdTrova"), querytext::kFind);
    auto *commands = new QVBoxLayout;
    commands->addLayout(ops);
    commands->addStretch();
    commands->addWidget(esegui);
    commands->addWidget(annulla);

    auto *middle = new QHBoxLayout;
    middle->addWidget(m_query, 1);
    middle->addLayout(commands);

    auto *results = new QHBoxLayout;
    results->addWidget(m_elementi, 1);
    auto *resultButtons = new QVBoxLayout;
    resultButtons->addWidget(trova);
    resultButtons->addStretch();
    results->addLayout(resultButtons);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(lists, 2);
    layout->addLayout(middle, 1);
    layout->addWidget(new QLabel(QStringLiteral("Elementi trovati:"), this));
    layout->addLayout(results, 1);

    connect(m_temi, &QListWidget::currentRowChanged, this, &FrmQuery::themeChosen);
    connect(m_campi, &QListWidget::currentRowChanged, this, &FrmQuery::fieldChosen);
    connect(m_campi, &QListWidget::itemClicked, this, &FrmQuery::fieldClicked);
    connect(m_valori, &QListWidget::itemClicked, this, [this](QListWidgetItem *item) {
        const int f = m_campi->currentRow();
        const bool text = f >= 0 && f < m_fields.size() && m_fields[f].isText;
        insertText(valueInsertion(item->text(), text));
    });
    connect(m_ante, &QCheckBox::toggled, this, &FrmQuery::previewToggled);
    connect(esegui, &QPushButton::clicked, this, &FrmQuery::runQuery);
    connect(trova, &QPushButton::clicked, this, &FrmQuery::findChosen);
    connect(m_elementi, &QListWidget::itemDoubleClicked, this, &FrmQuery::findChosen);
    connect(annulla, &QPushButton::clicked, this, &FrmQuery::clearQuery);

    resize(720, 560);
    if (!m_themes.isEmpty())
        m_temi->setCurrentRow(0);
}

void FrmQuery::chooseTheme(const QString &name)
{
    for (int i = 0; i < m_themes.size(); ++i)
        if (m_themes[i].name.compare(name, Qt::CaseInsensitive) == 0)
            m_temi->setCurrentRow(i);
}

const QueryTheme *FrmQuery::theme() const
{
    const int row = m_temi->currentRow();
    return row >= 0 && row < m_themes.size() ? &m_themes[row] : nullptr;
}

void FrmQuery::themeChosen(int row)
{
    m_campi->clear();
    m_valori->clear();
    m_elementi->clear();
    m_fields.clear();
    m_folder.reset();
    m_selected->setText(querytext::kOriginalName);
    if (row < 0 || row >= m_themes.size())
        return;
    const QueryTheme &t = m_themes[row];
    m_folder.emplace(queryTableFolder(t.shapePath));
    m_table = queryTableName(t.shapePath);
    auto fields = mapQueryFields(*m_folder, m_table);
    if (!fields) {
        showMessage(MsgStyle::Critical, fields.errorMessage());
        return;
    }
    const bool described = isBaseTable(m_table);
    for (const MapQueryField &f : *fields)
        if (!isPlaceholderField(f.name)) { // placeholders are never listed
            m_fields << f;
            const QString d = described ? m_catalog.description(f.name, kBaseCategoryCode) : QString();
            m_campi->addItem(d.isEmpty() || d == kNoMatch ? f.name : d);
        }
}

void FrmQuery::fieldChosen(int row)
{
    m_fieldJustChosen = true;
    m_valori->clear();
    if (row < 0 || row >= m_fields.size()) {
        m_selected->setText(querytext::kOriginalName);
        return;
    }
    m_selected->setText(querytext::kOriginalName + QLatin1Char(' ') + m_fields[row].name);
    if (m_ante->isChecked())
        fillValues();
}

void FrmQuery::fieldClicked(QListWidgetItem *item)
{
    // The click that chooses a field only chooses it; a click on the chosen
    // field puts it into the condition.
    if (m_fieldJustChosen) {
        m_fieldJustChosen = false;
        return;
    }
    const int row = m_campi->row(item);
    if (row >= 0 && row < m_fields.size())
        insertText(fieldInsertion(m_fields[row].name)); // the stored name, whatever the list shows
}

void FrmQuery::previewToggled(bool on)
{
    if (!on) {
        m_valori->clear();
        return;
    }
    if (m_campi->currentRow() < 0) {
        showMessage(MsgStyle::Exclamation, querytext::kChooseField);
        const QSignalBlocker block(m_ante);
        m_ante->setChecked(false);
        return;
    }
    fillValues();
}

void FrmQuery::fillValues()
{
    m_valori->clear();
    const int row = m_campi->currentRow();
    if (!m_folder || row < 0 || row >= m_fields.size())
        return;
    auto values = mapQueryValues(*m_folder, m_table, m_fields[row].name);
    if (!values) {
        showMessage(MsgStyle::Critical, values.errorMessage());
        return;
    }
    m_valori->addItems(*values);
}

void FrmQuery::insertText(const QString &piece)
{
    m_query->textCursor().insertText(piece);
    m_query->setFocus();
}

void FrmQuery::runQuery()
{
    m_elementi->clear();
    const QueryTheme *t = theme();
    if (!t || !m_folder)
        return;
    auto r = runMapQuery(*m_folder, m_table, m_query->toPlainText());
    if (!r) {
        showMessage(MsgStyle::Critical, r.errorMessage()); // the text stays for correction
        return;
    }
    switch (r->kind) {
    case MapQueryResult::Kind::None:
        showMessage(MsgStyle::Exclamation, querytext::kNothingFound);
        return;
    case MapQueryResult::Kind::One:
        if (r->labels.isEmpty() || !m_host.selectAndZoom(t->name, singleResultExpression(r->labels.front())))
            showMessage(MsgStyle::Exclamation, querytext::kNoElement);
        return;
    case MapQueryResult::Kind::Many:
        for (const QString &label : r->labels) {
            m_elementi->addItem(label);
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        }
        showMessage(MsgStyle::Information, querytext::manyFoundMessage(r->count));
        return;
    }
}

void FrmQuery::findChosen()
{
    const QListWidgetItem *item = m_elementi->currentItem();
    const QueryTheme *t = theme();
    if (!item || !t) {
        showMessage(MsgStyle::Exclamation, querytext::kNothingChosen);
        return;
    }
    if (!m_host.selectAndZoom(t->name, chosenResultExpression(item->text())))
        showMessage(MsgStyle::Exclamation, querytext::kNoElement);
}

void FrmQuery::clearQuery()
{
    m_query->clear();
    m_elementi->clear();
}

void openMapQuery(QWidget *parent, const QList<QueryTheme> &themes, MapSelectionHost &host, IndicatorCatalog catalog,
                  const QString &activeTheme)
{
    FrmQuery window(themes, host, std::move(catalog), parent);
    if (!activeTheme.isEmpty())
        window.chooseTheme(activeTheme);
    window.exec();
}

} // namespace mervola
