#include "project/ui/ListMdb.h"

#include "platform/Messages.h"
#include "platform/SqlText.h"
#include "platform/dbf/DbfTable.h"
#include "project/JoinSource.h"
#include "project/ui/JoinConflitti.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

namespace mervola {

namespace {

const QString kYes = QStringLiteral("Sì");
const QString kNo = QStringLiteral("No");
enum Column { ColInclude, ColName, ColAlias, ColFormat, ColType };

QString filterOf(const QString &type)
{
    if (type == JoinSourceType::Access)
        return QStringLiteral("Microsoft Access MDBs (*.mdb)");
    if (type == JoinSourceType::Text)  // spreadsheets save .csv: offered after the text files
        return QStringLiteral("Text Files (*.txt);;File CSV (*.csv)");
    return QStringLiteral("Dbase DBs (*.dbf)");
}

// The include column: a "Sì" / "No" combo.
class IncludeDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        auto *combo = new QComboBox(parent);
        combo->setObjectName(QStringLiteral("cmb_SiNo"));
        combo->addItems({kYes, kNo});
        return combo;
    }
    void setEditorData(QWidget *editor, const QModelIndex &index) const override
    {
        static_cast<QComboBox *>(editor)->setCurrentText(index.data().toString());
    }
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override
    {
        model->setData(index, static_cast<QComboBox *>(editor)->currentText());
    }
};

// The alias column: only lower-case letters, digits and "_", checked for
// uniqueness before it is taken.
class AliasDelegate : public QStyledItemDelegate {
public:
    using Check = std::function<Status(int row, const QString &alias)>;
    AliasDelegate(Check check, QObject *parent) : QStyledItemDelegate(parent), m_check(std::move(check)) {}
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        auto *edit = new QLineEdit(parent);
        edit->setObjectName(QStringLiteral("txtAlias"));
        edit->setMaxLength(kDbfMaxFieldNameLength);
        edit->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[a-z0-9_]*")), edit));
        return edit;
    }
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override
    {
        const QString alias = static_cast<QLineEdit *>(editor)->text();
        if (alias.isEmpty() || alias == index.data().toString())
            return;
        if (Status st = m_check(index.row(), alias); !st) {
            showMessage(MsgStyle::Exclamation, st.errorMessage());
            return;
        }
        model->setData(index, alias);
    }

private:
    Check m_check;
};

}  // namespace

ListMdb::ListMdb(JoinTarget target, QWidget *parent)
    : QDialog(parent), m_target(std::move(target)), m_db(m_target.home)
{
    setObjectName(QStringLiteral("ListMdb"));
    setWindowTitle(ListMdbText::kCaption);
    m_themeTable = QFileInfo(m_target.shapefilePath).completeBaseName();
    m_themeFields = dbfFieldNames(
        resolveCaseInsensitive(QFileInfo(m_target.shapefilePath).absolutePath(), m_themeTable + QStringLiteral(".dbf")));
    m_chooseFile = [this](const QString &title, const QString &filter) {
        return QFileDialog::getOpenFileName(this, title, QString(), filter);
    };
    m_resolveConflicts = [this] { return VerifyConflitti(m_db, m_themeTable, m_themeFields, this); };

    auto *layout = new QVBoxLayout(this);
    m_title = new QLabel(this);
    m_title->setObjectName(QStringLiteral("lblPasso"));
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    layout->addWidget(m_title);
    m_pages = new QStackedWidget(this);
    for (int i = 0; i < 3; ++i)
        m_pages->addWidget(new QWidget(m_pages));
    buildStep1(m_pages->widget(0));
    buildStep2(m_pages->widget(1));
    buildStep3(m_pages->widget(2));
    layout->addWidget(m_pages, 1);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    m_back = new QPushButton(QStringLiteral("< Indietro"), this);
    m_back->setObjectName(QStringLiteral("cmd_indietro"));
    m_next = new QPushButton(this);
    m_next->setObjectName(QStringLiteral("cmd_avanti"));
    m_next->setDefault(true);
    m_cancel = new QPushButton(QStringLiteral("Annulla"), this);
    m_cancel->setObjectName(QStringLiteral("cmd_Annulla"));
    buttons->addWidget(m_back);
    buttons->addWidget(m_next);
    buttons->addWidget(m_cancel);
    layout->addLayout(buttons);
    connect(m_back, &QPushButton::clicked, this, &ListMdb::back);
    connect(m_next, &QPushButton::clicked, this, &ListMdb::next);
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
    resize(620, 440);
    goTo(1);
}

ListMdb::~ListMdb() = default;

void ListMdb::buildStep1(QWidget *page)
{
    auto *layout = new QVBoxLayout(page);
    m_access = new QRadioButton(QStringLiteral("Microsoft Access"), page);
    m_access->setObjectName(QStringLiteral("rb_MsAccess"));
    m_dbase = new QRadioButton(QStringLiteral("dBase"), page);
    m_dbase->setObjectName(QStringLiteral("rb_Dbase_3"));
    m_text = new QRadioButton(QStringLiteral("File di testo"), page);
    m_text->setObjectName(QStringLiteral("rb_Text"));
    m_access->setChecked(true);
    for (QRadioButton *b : {m_access, m_dbase, m_text})
        layout->addWidget(b);
    m_file = new QLabel(page);
    m_file->setObjectName(QStringLiteral("lblFile"));
    layout->addWidget(m_file);
    layout->addStretch();
}

void ListMdb::buildStep2(QWidget *page)
{
    auto *layout = new QVBoxLayout(page);
    m_tablesLabel = new QLabel(QStringLiteral("Elenco Tabelle"), page);
    m_tables = new QListWidget(page);
    m_tables->setObjectName(QStringLiteral("lstTabelle"));
    m_tables->setMaximumHeight(110);
    // A table is chosen by selecting it: the current row alone, which the
    // list takes on when it gets the focus, chooses nothing.
    m_tables->setSelectionMode(QAbstractItemView::SingleSelection);
    connect(m_tables, &QListWidget::itemSelectionChanged, this, &ListMdb::tableChosen);
    layout->addWidget(m_tablesLabel);
    layout->addWidget(m_tables);
    m_model = new QStandardItemModel(0, 5, this);
    m_model->setHorizontalHeaderLabels(
        {QStringLiteral("Includere"), QStringLiteral("Campo"), QStringLiteral("Alias"), QStringLiteral("Formato"),
         QStringLiteral("tipocampo")});
    m_grid = new QTableView(page);
    m_grid->setObjectName(QStringLiteral("dbg_Alias"));
    m_grid->setModel(m_model);
    m_grid->setColumnHidden(ColType, true);
    m_grid->verticalHeader()->hide();
    m_grid->horizontalHeader()->setStretchLastSection(true);
    m_grid->setItemDelegateForColumn(ColInclude, new IncludeDelegate(m_grid));
    m_grid->setItemDelegateForColumn(ColAlias, new AliasDelegate(
                                                   [this](int row, const QString &alias) {
                                                       readGrid();
                                                       return validateAlias(alias, row, m_rows, m_target.structure);
                                                   },
                                                   m_grid));
    layout->addWidget(m_grid, 1);
}

void ListMdb::buildStep3(QWidget *page)
{
    auto *layout = new QVBoxLayout(page);
    auto *form = new QFormLayout;
    m_extField = new QComboBox(page);
    m_extField->setObjectName(QStringLiteral("Combo_Ext"));
    m_themeField = new QComboBox(page);
    m_themeField->setObjectName(QStringLiteral("cboJoin"));
    form->addRow(QStringLiteral("Tabella esterna:"), m_extField);
    form->addRow(QStringLiteral("Tabella del Tema:"), m_themeField);
    layout->addLayout(form);
    m_summary = new QLabel(page);
    m_summary->setObjectName(QStringLiteral("lblDescrizione"));
    m_summary->setWordWrap(true);
    layout->addWidget(m_summary);
    layout->addStretch();
    connect(m_extField, &QComboBox::currentIndexChanged, this, &ListMdb::updateSummary);
    connect(m_themeField, &QComboBox::currentIndexChanged, this, &ListMdb::updateSummary);
}

int ListMdb::step() const { return m_pages->currentIndex() + 1; }

QString ListMdb::sourceType() const
{
    if (m_access->isChecked())
        return JoinSourceType::Access;
    return m_text->isChecked() ? JoinSourceType::Text : JoinSourceType::DbaseIV;
}

QString ListMdb::externalTable() const
{
    return sourceType() == JoinSourceType::Access ? m_accessTable : m_sourceFile;
}

void ListMdb::goTo(int step)
{
    m_pages->setCurrentIndex(step - 1);
    const QString titles[] = {ListMdbText::kStep1, ListMdbText::kStep2, ListMdbText::kStep3};
    m_title->setText(titles[step - 1]);
    m_back->setEnabled(step > 1);
    m_next->setText(step == 3 ? QStringLiteral("Fine") : QStringLiteral("Avanti >"));
    const bool access = sourceType() == JoinSourceType::Access;
    m_tablesLabel->setVisible(access);
    m_tables->setVisible(access);
}

void ListMdb::back()
{
    if (step() == 3)
        readGrid();
    if (step() > 1)
        goTo(step() - 1);
}

void ListMdb::next()
{
    switch (step()) {
    case 1:
        if (chooseSource())
            goTo(2);
        break;
    case 2:
        if (enterStep3())
            goTo(3);
        break;
    default: finish(); break;
    }
}

bool ListMdb::chooseSource()
{
    const QString type = sourceType();
    const QString path = m_chooseFile(ListMdbText::kDialogTitle + type, filterOf(type));
    if (path.isEmpty())
        return false;
    const QFileInfo info(path);
    if (hasForbiddenFileCharacters(info.fileName())) {
        showMessage(MsgStyle::Exclamation, JoinText::kBadCharacters);
        return false;
    }
    if (Status st = checkSourceFileName(type, info.fileName()); !st) {
        showMessage(MsgStyle::Exclamation, st.errorMessage());
        return false;
    }
    m_sourceFolder = info.absolutePath();
    m_sourceFile = info.fileName();
    m_accessTable.clear();
    m_rows.clear();
    m_model->removeRows(0, m_model->rowCount());
    m_file->setText(QDir::toNativeSeparators(path));
    if (type == JoinSourceType::Access) {
        auto tables = accessTableNames(path);
        if (!tables) {
            showMessage(MsgStyle::Critical, JoinText::kSourceUnreadable);
            return false;
        }
        const QSignalBlocker block(m_tables);
        m_tables->clear();
        m_tables->addItems(tables.value());
        return true;
    }
    auto source = readSource(type, m_sourceFolder, m_sourceFile, m_sourceFile);
    if (!source) {
        showMessage(MsgStyle::Critical, JoinText::kSourceUnreadable);
        return false;
    }
    stage(source.value());
    return true;
}

void ListMdb::tableChosen()
{
    const QList<QListWidgetItem *> chosen = m_tables->selectedItems();
    if (chosen.isEmpty())
        return;
    QListWidgetItem *item = chosen.first();
    auto source = readAccessTable(m_sourceFolder + QLatin1Char('/') + m_sourceFile, item->text());
    if (!source) {
        showMessage(MsgStyle::Critical, JoinText::kSourceUnreadable);
        return;
    }
    m_accessTable = item->text();
    stage(source.value());
}

bool ListMdb::stage(const SourceTable &source)
{
    const StagingContext context{sourceType(), m_sourceFolder, m_sourceFile,
                                 QFileInfo(m_target.shapefilePath).absolutePath(), m_themeTable};
    m_rows = stagedRowsFor(context, source.fields, m_themeFields);
    fillGrid();
    if (Status st = stageFields(m_db, m_rows); !st) {
        showMessage(MsgStyle::Exclamation, st.errorMessage());
        return false;
    }
    // Fields whose values cannot be read are listed, not included.
    if (std::any_of(m_rows.cbegin(), m_rows.cend(), [](const StagedField &r) { return isUnreadableType(r.tipoCampo); }))
        showMessage(MsgStyle::Exclamation, JoinText::kUnknownFormat);
    return true;
}

void ListMdb::fillGrid()
{
    m_model->removeRows(0, m_model->rowCount());
    for (const StagedField &r : m_rows) {
        QList<QStandardItem *> items{new QStandardItem(r.incluso ? kYes : kNo), new QStandardItem(r.nomeCampo),
                                     new QStandardItem(r.aliasCampo), new QStandardItem(r.strTipoCampo),
                                     new QStandardItem(QString::number(r.tipoCampo))};
        for (int c : {ColName, ColFormat, ColType})
            items[c]->setEditable(false);
        m_model->appendRow(items);
    }
}

bool ListMdb::readGrid()
{
    for (int i = 0; i < m_rows.size() && i < m_model->rowCount(); ++i) {
        m_rows[i].incluso = m_model->item(i, ColInclude)->text() == kYes;
        m_rows[i].aliasCampo = m_model->item(i, ColAlias)->text();
    }
    return true;
}

bool ListMdb::enterStep3()
{
    if (sourceType() == JoinSourceType::Access && m_accessTable.isEmpty()) {
        showMessage(MsgStyle::Exclamation, JoinText::kChooseTable);
        return false;
    }
    readGrid();
    const bool anyText = std::any_of(m_rows.cbegin(), m_rows.cend(), [](const StagedField &r) {
        return r.incluso && familyOfType(r.tipoCampo) == FieldFamily::Alphanumeric;
    });
    if (!anyText) {
        showMessage(MsgStyle::Exclamation, JoinText::kNoTextField);
        return false;
    }
    if (Status st = checkIncludedFields(m_rows); !st) {
        showMessage(MsgStyle::Exclamation, st.errorMessage());
        return false;
    }
    const int included = int(std::count_if(m_rows.cbegin(), m_rows.cend(), [](const StagedField &r) { return r.incluso; }));
    if (Status st = checkFieldCount(int(m_themeFields.size()), included); !st) {
        showMessage(MsgStyle::Exclamation, st.errorMessage());
        return false;
    }
    if (Status st = updateStaged(m_db, m_rows); !st) {
        showMessage(MsgStyle::Critical, st.errorMessage());
        return false;
    }

    const QSignalBlocker blockExt(m_extField), blockTheme(m_themeField);
    m_extField->clear();
    for (const StagedField &r : m_rows)
        if (r.incluso && familyOfType(r.tipoCampo) == FieldFamily::Alphanumeric)
            m_extField->addItem(r.nomeCampo);
    m_themeField->clear();
    auto joinFields = m_db.query(QStringLiteral("Select ALIAS, FIELDJOIN from strutture where TABELLA = ") +
                                 sqlQuote(m_themeTable) + QStringLiteral(" And FIELDJOIN = True"));
    if (joinFields)
        for (size_t i = 0; i < joinFields->size(); ++i) {
            const QString alias = joinFields->value(i, QStringLiteral("ALIAS")).toString();
            const StructureRow *row = m_target.structure.findByAlias(alias);
            m_themeField->addItem(alias, row ? row->label : alias);
        }
    if (m_themeField->count() == 0)  // no structure rows: the theme's own fields
        for (const QString &f : std::as_const(m_themeFields))
            m_themeField->addItem(f, f);
    updateSummary();
    return true;
}

void ListMdb::updateSummary()
{
    m_summary->setText(joinSummary(externalTable(), m_themeTable, m_extField->currentText(),
                                   m_themeField->currentData().toString()));
}

void ListMdb::finish()
{
    if (m_extField->currentIndex() < 0 || m_themeField->currentIndex() < 0)
        return;
    if (!m_resolveConflicts())
        return;
    JoinRequest request;
    request.shapefilePath = m_target.shapefilePath;
    request.sourceType = sourceType();
    request.sourceFolder = m_sourceFolder;
    request.sourceFile = m_sourceFile;
    request.sourceTable = externalTable();
    request.themeJoinField = m_themeField->currentData().toString();
    request.extJoinField = m_extField->currentText();
    request.layerIndex = m_target.layerIndex;
    auto outcome = runJoin(m_db, request, m_target.iniPath, m_target.layer);
    if (!outcome) {
        showJoinError(outcome.error());
        return;
    }
    m_outcome = outcome.value();
    accept();
}

std::optional<JoinOutcome> openJoinWizard(QWidget *parent, const JoinTarget &target)
{
    ListMdb wizard(target, parent);
    if (wizard.exec() != QDialog::Accepted)
        return std::nullopt;
    return wizard.outcome();
}

}  // namespace mervola
