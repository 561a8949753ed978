#include "classify/ui/ClassificationDialog.h"

#include "classify/ClassFit.h"
#include "classify/ClassificationMethod.h"
#include "classify/ClassifyTexts.h"
#include "classify/ui/QtColors.h"
#include "classify/ui/FrmModFlx.h"
#include "classify/ui/HistogramWidget.h"
#include "platform/Messages.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLinearGradient>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace mervola::classify {

namespace {


QIcon rampIcon(const RampDef &r)
{
    QPixmap pm(48, 12);
    QPainter p(&pm);
    QLinearGradient g(0, 0, 48, 0);
    g.setColorAt(0, toQColor(r.start));
    g.setColorAt(1, toQColor(r.end));
    p.fillRect(pm.rect(), g);
    p.setPen(Qt::gray);
    p.drawRect(pm.rect().adjusted(0, 0, -1, -1));
    return QIcon(pm);
}

QComboBox *combo(const char *name, QWidget *parent)
{
    auto *c = new QComboBox(parent);
    c->setObjectName(QLatin1String(name));
    return c;
}

}  // namespace

ClassificationDialog::ClassificationDialog(const QString &theme, const QList<CandidateField> &fields,
                                           FieldValuesFn values, const Classification &current, QWidget *parent)
    : QDialog(parent), m_fields(fields), m_values(std::move(values)), m_class(current)
{
    buildUi(theme);
    selectCurrent(current);
    m_shown = currentChoices();
    // A theme without classes opens with the first field already classified,
    // so the user sees classes and histogram at once.
    if (current.classes.empty() && !currentField().isEmpty())
        classify();
    else
        refresh();
}

void ClassificationDialog::buildUi(const QString &theme)
{
    setObjectName(QStringLiteral("frmClassificazione"));
    setWindowTitle(QStringLiteral("Classificazione - %1").arg(theme));
    m_categoria = combo("cboCategoria", this);
    m_campo = combo("cboCampo", this);
    m_tipoLegenda = combo("cboTipoLegenda", this);
    m_tipoLegenda->addItems({texts::kLegendClassi, texts::kLegendUnici});
    m_metodo = combo("cboMetodo", this);
    m_metodo->addItems({texts::kMethodQuantile, texts::kMethodRegolari});
    m_classi = combo("cboClassi", this);
    for (int i = 1; i <= kMaxClasses; ++i)
        m_classi->addItem(QString::number(i), i);
    m_classi->setCurrentIndex(4);
    m_ramp = combo("cboRamp", this);
    for (const RampDef &r : predefinedRamps())
        m_ramp->addItem(rampIcon(r), r.name);
    auto *rampButton = new QPushButton(QStringLiteral("Applica scala"), this);
    rampButton->setObjectName(QStringLiteral("cmdRamp"));
    auto *invert = new QPushButton(QStringLiteral("Inverti colori"), this);
    invert->setObjectName(QStringLiteral("cmdInvertiColori"));

    m_grid = new QTableWidget(0, 4, this);
    m_grid->setObjectName(QStringLiteral("flxSimboli"));
    m_grid->setHorizontalHeaderLabels({texts::kColColore, texts::kColValore, texts::kColLabel,
                                       QStringLiteral("Elementi")});
    m_grid->verticalHeader()->hide();
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grid->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    m_grid->horizontalHeader()->setSectionResizeMode(ColLabel, QHeaderView::Stretch);
    m_grid->setColumnWidth(ColColore, 60);
    m_grid->setColumnWidth(ColValore, 150);
    m_grid->setColumnWidth(ColElementi, 70);
    m_histogram = new HistogramWidget(this);
    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("lblRiepilogo"));
    m_gvf = new QLabel(this);
    m_gvf->setObjectName(QStringLiteral("lblGvf"));
    m_gvf->setToolTip(QStringLiteral("Quota della varianza dei valori spiegata dalle classi (1 = classi perfette)"));
    m_natural = new QPushButton(QStringLiteral("Interruzioni naturali"), this);
    m_natural->setObjectName(QStringLiteral("cmdInterruzioniNaturali"));
    m_natural->setToolTip(QStringLiteral("Limiti che rendono le classi il più possibile omogenee (Fisher-Jenks)"));
    m_compare = new QPushButton(QStringLiteral("Confronta metodi"), this);
    m_compare->setObjectName(QStringLiteral("cmdConfrontaMetodi"));
    m_compare->setCheckable(true);
    m_comparison = new QTableWidget(0, 4, this);
    m_comparison->setObjectName(QStringLiteral("tblConfrontaMetodi"));
    m_comparison->setHorizontalHeaderLabels({QStringLiteral("Classi"), texts::kMethodQuantile, texts::kMethodRegolari,
                                             QStringLiteral("Interruzioni naturali")});
    m_comparison->verticalHeader()->hide();
    m_comparison->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_comparison->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_comparison->setToolTip(QStringLiteral("Bontà dell'adattamento (GVF) di ogni metodo per numero di classi"));
    m_comparison->hide();
    m_logAxis = new QCheckBox(QStringLiteral("Scala logaritmica"), this);
    m_logAxis->setObjectName(QStringLiteral("chkScalaLogaritmica"));

    auto *choices = new QGridLayout;
    choices->addWidget(new QLabel(QStringLiteral("Categoria:"), this), 0, 0);
    choices->addWidget(m_categoria, 0, 1);
    choices->addWidget(new QLabel(QStringLiteral("Campo:"), this), 0, 2);
    choices->addWidget(m_campo, 0, 3, 1, 3);
    choices->addWidget(new QLabel(QStringLiteral("Tipo di legenda:"), this), 1, 0);
    choices->addWidget(m_tipoLegenda, 1, 1);
    choices->addWidget(new QLabel(QStringLiteral("Metodo:"), this), 1, 2);
    choices->addWidget(m_metodo, 1, 3);
    choices->addWidget(new QLabel(QStringLiteral("Classi:"), this), 1, 4);
    choices->addWidget(m_classi, 1, 5);
    choices->addWidget(m_natural, 1, 6);
    choices->addWidget(m_gvf, 2, 4, 1, 3);
    choices->addWidget(m_compare, 0, 6);
    choices->addWidget(new QLabel(QStringLiteral("Scala di colori:"), this), 2, 0);
    choices->addWidget(m_ramp, 2, 1);
    choices->addWidget(rampButton, 2, 2);
    choices->addWidget(invert, 2, 3);
    choices->setColumnStretch(3, 1);

    auto *ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("cmdOk"));
    ok->setDefault(true);
    auto *cancel = new QPushButton(QStringLiteral("Annulla"), this);
    cancel->setObjectName(QStringLiteral("cmdAnnulla"));
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(ok, QDialogButtonBox::AcceptRole);
    buttons->addButton(cancel, QDialogButtonBox::RejectRole);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(choices);
    layout->addWidget(m_grid, 3);
    layout->addWidget(m_comparison, 2);
    layout->addWidget(m_histogram, 2);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_summary, 1);
    bottom->addWidget(m_logAxis);
    layout->addLayout(bottom);
    layout->addWidget(buttons);
    resize(720, 600);

    fillCategories();
    fillFields();
    connect(m_categoria, &QComboBox::activated, this, [this] {
        fillFields();
        classify();
    });
    connect(m_campo, &QComboBox::activated, this, &ClassificationDialog::classify);
    connect(m_tipoLegenda, &QComboBox::activated, this, &ClassificationDialog::classify);
    connect(m_metodo, &QComboBox::activated, this, &ClassificationDialog::classify);
    connect(m_classi, &QComboBox::activated, this, &ClassificationDialog::classify);
    connect(m_ramp, &QComboBox::activated, this, [this](int index) {
        if (m_class.classes.empty())
            return;
        applyRamp(m_class.classes, index);
        refresh();
    });
    connect(rampButton, &QPushButton::clicked, this, [this] {
        cmdRamp(m_class.classes);
        refresh();
    });
    connect(invert, &QPushButton::clicked, this, [this] {
        cmdInvertiColori(m_class.classes);
        refresh();
    });
    connect(m_natural, &QPushButton::clicked, this, &ClassificationDialog::fillNaturalBreaks);
    connect(m_compare, &QPushButton::toggled, this, [this](bool on) {
        m_comparison->setVisible(on);
        refreshComparison();
    });
    connect(m_logAxis, &QCheckBox::toggled, m_histogram, &HistogramWidget::setLogarithmic);
    connect(m_grid, &QTableWidget::cellDoubleClicked, this, &ClassificationDialog::onCellDoubleClicked);
    connect(m_grid, &QTableWidget::cellChanged, this, &ClassificationDialog::onCellChanged);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

void ClassificationDialog::fillCategories()
{
    m_categoria->clear();
    m_categoria->addItem(QStringLiteral("Tutte le categorie"), QString());
    QStringList seen;
    for (const CandidateField &f : m_fields)
        if (!f.category.isEmpty() && !seen.contains(f.category))
            seen << f.category;
    for (const QString &c : seen)
        m_categoria->addItem(c, c);
}

void ClassificationDialog::fillFields()
{
    const QString category = m_categoria->currentData().toString();
    const QString keep = currentField();
    m_campo->clear();
    for (const CandidateField &f : m_fields)
        if (category.isEmpty() || f.category == category)
            m_campo->addItem(f.description.isEmpty() ? f.name : f.description, f.name);
    const int i = m_campo->findData(keep);
    if (i >= 0)
        m_campo->setCurrentIndex(i);
}

void ClassificationDialog::selectCurrent(const Classification &current)
{
    int i = m_campo->findData(current.field, Qt::UserRole, Qt::MatchFixedString);
    if (i >= 0)
        m_campo->setCurrentIndex(i);
    m_tipoLegenda->setCurrentIndex(current.uniqueValues ? 1 : 0);
    updateChoiceStates();
    m_metodo->setCurrentIndex(std::clamp(current.methodIndex, 0, 1));
    if (current.requestedClasses >= 1 && current.requestedClasses <= kMaxClasses)
        m_classi->setCurrentIndex(current.requestedClasses - 1);
    if (current.rampIndex >= 0 && current.rampIndex < m_ramp->count())
        m_ramp->setCurrentIndex(current.rampIndex);
    if (!current.classes.empty() && column(current.field))
        countElements(*column(current.field), m_class.classes, m_class.uniqueValues);
}

QString ClassificationDialog::currentField() const { return m_campo ? m_campo->currentData().toString() : QString(); }

bool ClassificationDialog::isTextField(const QString &field) const
{
    for (const CandidateField &f : m_fields)
        if (f.name.compare(field, Qt::CaseInsensitive) == 0)
            return !f.numeric;
    return false;
}

ClassificationDialog::Choices ClassificationDialog::currentChoices() const
{
    return {currentField(), m_tipoLegenda->currentIndex(), m_metodo->currentIndex(), m_classi->currentIndex()};
}

void ClassificationDialog::showChoices(const Choices &c)
{
    if (const int i = m_campo->findData(c.field); i >= 0)
        m_campo->setCurrentIndex(i);
    m_tipoLegenda->setCurrentIndex(c.legendType);
    m_metodo->setCurrentIndex(c.method);
    m_classi->setCurrentIndex(c.classCount);
    updateChoiceStates();
}

void ClassificationDialog::updateChoiceStates()
{
    const bool text = isTextField(currentField());
    if (text)
        m_tipoLegenda->setCurrentIndex(1);
    if (auto *model = qobject_cast<QStandardItemModel *>(m_tipoLegenda->model()))
        model->item(0)->setEnabled(!text);
    const bool classes = m_tipoLegenda->currentIndex() == 0;
    m_metodo->setEnabled(classes);
    m_classi->setEnabled(classes);
    m_natural->setEnabled(classes);
    m_compare->setEnabled(!text);
}

const FieldColumn *ClassificationDialog::column(const QString &field)
{
    if (field.isEmpty() || !m_values)
        return nullptr;
    auto it = m_columns.find(field);
    if (it == m_columns.end()) {
        Result<FieldColumn> r = m_values(field);
        if (!r) {
            showMessage(MsgStyle::Critical, r.errorMessage());
            return nullptr;
        }
        it = m_columns.insert(field, std::move(r.value()));
    }
    return &it.value();
}

void ClassificationDialog::classify()
{
    updateChoiceStates();
    const FieldColumn *col = column(currentField());
    // A refusal, a "No" or a field without numbers keeps the classes shown,
    // and the boxes go back to the choices that gave them.
    if (!col) {
        showChoices(m_shown);
        return;
    }
    const bool unique = m_tipoLegenda->currentIndex() == 1 || !col->numeric;
    const QString id = unique ? kUnico : m_metodo->currentIndex() == 1 ? kRegolari : kQuantile;
    const ClassifyOutcome o = methodById(id)->classes(*col, m_classi->currentData().toInt(), m_ramp->currentIndex());
    if (!o.ok()) {
        showChoices(m_shown);
        return;
    }
    m_class = o.classification;
    m_shown = currentChoices();
    refresh();
}

void ClassificationDialog::refresh()
{
    m_refreshing = true;
    m_grid->setUpdatesEnabled(false);
    m_grid->setRowCount(int(m_class.classes.size()));
    for (int row = 0; row < int(m_class.classes.size()); ++row) {
        const ClassRange &r = m_class.classes[size_t(row)];
        auto *colour = new QTableWidgetItem;
        colour->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        colour->setBackground(toQColor(r.fillColor));
        m_grid->setItem(row, ColColore, colour);
        auto *value = new QTableWidgetItem(r.valueText);
        value->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        m_grid->setItem(row, ColValore, value);
        m_grid->setItem(row, ColLabel, new QTableWidgetItem(r.label));
        auto *count = new QTableWidgetItem(QString::number(r.count));
        count->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        count->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_grid->setItem(row, ColElementi, count);
    }
    m_grid->setUpdatesEnabled(true);
    const FieldColumn *col = m_class.field.isEmpty() ? nullptr : column(m_class.field);
    m_histogram->setData(col ? col->sortedNumbers() : std::vector<double>{}, m_class.classes, m_class.uniqueValues);
    // The logarithmic axis is offered when the values span more than two
    // orders of magnitude.
    m_logAxis->setEnabled(m_histogram->logarithmicPossible());
    if (!m_logAxis->isEnabled())
        m_logAxis->setChecked(false);
    m_summary->setText(m_class.classes.empty()
                           ? QStringLiteral("Nessuna classificazione")
                           : QStringLiteral("%1 classi, metodo %2").arg(m_class.classes.size()).arg(m_class.method));
    refreshFit();
    refreshComparison();
    m_refreshing = false;
}

void ClassificationDialog::refreshFit()
{
    const FieldColumn *col = m_class.field.isEmpty() ? nullptr : column(m_class.field);
    const bool numeric = col && col->numeric && !m_class.uniqueValues;
    m_gvf->setVisible(numeric);
    if (numeric)
        m_gvf->setText(gvfText(goodnessOfFit(col->sortedNumbers(), m_class.classes)));
}

void ClassificationDialog::refreshComparison()
{
    if (!m_comparison->isVisible())
        return;
    const QString field = currentField();
    const int classes = m_classi->currentData().toInt();
    const QString key = field + QLatin1Char('^') + QString::number(classes);
    if (key == m_comparedKey)
        return;
    m_comparedKey = key;
    const FieldColumn *col = column(field);
    const std::vector<MethodFit> rows = col ? compareMethods(*col, classes) : std::vector<MethodFit>{};
    m_comparison->setRowCount(int(rows.size()));
    const QLocale italian(QLocale::Italian);
    auto cell = [&](std::optional<double> v) {
        auto *item = new QTableWidgetItem(v ? italian.toString(*v, 'f', 3) : QStringLiteral("-"));
        item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        return item;
    };
    for (int i = 0; i < int(rows.size()); ++i) {
        const MethodFit &r = rows[size_t(i)];
        auto *count = new QTableWidgetItem(QString::number(r.classes));
        count->setTextAlignment(Qt::AlignCenter);
        m_comparison->setItem(i, 0, count);
        m_comparison->setItem(i, 1, cell(r.quantile));
        m_comparison->setItem(i, 2, cell(r.regular));
        m_comparison->setItem(i, 3, cell(r.natural));
    }
}

void ClassificationDialog::fillNaturalBreaks()
{
    const FieldColumn *col = column(currentField());
    if (!col || !col->numeric)
        return;
    Classification c = naturalBreaksClassification(*col, m_classi->currentData().toInt(), m_ramp->currentIndex());
    if (c.isEmpty())
        return;
    c.methodIndex = m_metodo->currentIndex();
    m_class = std::move(c);
    m_shown = currentChoices();
    refresh();
}

void ClassificationDialog::onCellDoubleClicked(int row, int col)
{
    if (row < 0 || row >= int(m_class.classes.size()))
        return;
    if (col == ColColore) {
        const QColor c = QColorDialog::getColor(toQColor(m_class.classes[size_t(row)].fillColor), this,
                                                QStringLiteral("Colore della classe"));
        if (c.isValid()) {
            m_class.classes[size_t(row)].fillColor = rgbValue(c.red(), c.green(), c.blue());
            refresh();
        }
    } else if (col == ColValore || col == ColElementi) {
        editLimits(row);
    }
}

void ClassificationDialog::editLimits(int row)
{
    if (row < 0 || row >= int(m_class.classes.size()) || m_class.uniqueValues)
        return;
    FrmModFlx dialog(m_class.classes[size_t(row)].valueText, this);
    connect(&dialog, &FrmModFlx::limitsChanged, this, [this, row](const QString &text) {
        m_refreshing = true;
        m_grid->item(row, ColValore)->setText(text);
        m_refreshing = false;
        // The fit follows the limits while they are typed.
        double lo = 0, hi = 0;
        const FieldColumn *col = column(m_class.field);
        if (col && parseRangeText(text, &lo, &hi)) {
            std::vector<ClassRange> trial = m_class.classes;
            trial[size_t(row)].lower = lo;
            trial[size_t(row)].upper = hi;
            m_gvf->setText(gvfText(goodnessOfFit(col->sortedNumbers(), trial)));
        }
    });
    if (dialog.exec() == QDialog::Accepted)
        applyLimits(row, dialog.valueText());
    else
        refresh();
}

void ClassificationDialog::applyLimits(int row, const QString &valueText)
{
    ClassRange &r = m_class.classes[size_t(row)];
    double lo = 0, hi = 0;
    if (!parseRangeText(valueText, &lo, &hi))
        return;
    r.lower = lo;
    r.upper = hi;
    r.valueText = valueText;
    r.label = valueText;
    // Limits typed by the user make the classification the user's own.
    m_class.method = kPersonali;
    if (const FieldColumn *col = column(m_class.field))
        countElements(*col, m_class.classes, false);
    refresh();
}

void ClassificationDialog::onCellChanged(int row, int col)
{
    if (m_refreshing || col != ColLabel || row < 0 || row >= int(m_class.classes.size()))
        return;
    m_class.classes[size_t(row)].label = m_grid->item(row, col)->text();
}

Classification ClassificationDialog::classification() const
{
    Classification c = m_class;
    c.rampIndex = m_ramp->currentIndex();
    if (c.method != kPersonali && c.method != kVr) {
        c.uniqueValues = m_tipoLegenda->currentIndex() == 1;
        c.methodIndex = m_metodo->currentIndex();
        c.requestedClasses = c.uniqueValues ? 0 : m_classi->currentData().toInt();
    }
    return c;
}

}  // namespace mervola::classify
