#include "app/ui/FrmLabelProperties.h"
#include "platform/ui/DialogButtons.h"

#include "platform/Messages.h"
#include "map/MapTypes.h"
#include "print/ui/FrmFont.h"
#include "project/Indicators.h"
#include "project/ProjectFile.h"

#include <QColorDialog>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace mervola {

namespace {

// The rotation and height boxes take digits only; the editing keys work as usual.
QLineEdit *digitsBox(const QString &name, QWidget *parent)
{
    auto *box = new QLineEdit(parent);
    box->setObjectName(name);
    box->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), box));
    box->setMaxLength(4);
    return box;
}

}  // namespace

FrmLabelProperties::FrmLabelProperties(const LabelDialogInput &input, QWidget *parent)
    : QDialog(parent), m_families(input.fontFamilies)
{
    setObjectName(QStringLiteral("frmLabelProperties"));
    setWindowTitle(LabelWindowText::kCaption + QStringLiteral(" - ") +
                   (input.title.isEmpty() ? input.themeName : input.title));
    setModal(true);

    m_field = new QComboBox(this);
    m_field->setObjectName(QStringLiteral("cboCampoLabel"));
    for (const LabelFieldEntry &e : input.entries)
        m_field->addItem(e.text, e.field);
    const int at = m_field->findText(input.form.fieldEntry, Qt::MatchFixedString);
    m_field->setCurrentIndex(at >= 0 ? at : (m_field->count() > 0 ? 0 : -1));

    auto *fontButton = new QPushButton(LabelWindowText::kFontButton, this);
    fontButton->setObjectName(QStringLiteral("cmdFont"));
    m_fontName = new QLabel(this);
    m_fontName->setObjectName(QStringLiteral("lblFont"));
    auto *fontRow = new QHBoxLayout;
    fontRow->addWidget(m_fontName, 1);
    fontRow->addWidget(fontButton);

    m_rotation = digitsBox(QStringLiteral("txtRotation"), this);
    m_rotation->setText(input.form.rotation);
    m_height = digitsBox(QStringLiteral("txtLabelHeight"), this);
    m_height->setText(input.form.height);

    m_colorButton = new QPushButton(LabelWindowText::kColor, this);
    m_colorButton->setObjectName(QStringLiteral("cmdColor"));

    auto *form = new QFormLayout;
    form->addRow(LabelWindowText::kField, m_field);
    form->addRow(QStringLiteral("Font:"), fontRow);
    form->addRow(LabelWindowText::kRotation, m_rotation);
    form->addRow(LabelWindowText::kHeight, m_height);
    form->addRow(QString(), m_colorButton);

    const OkCancelRow row = okCancelRow(this, QStringLiteral("cmdOk"), QStringLiteral("cmdAnnulla"));
    QPushButton *ok = row.ok, *cancel = row.cancel;
    QHBoxLayout *buttons = row.layout;

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);

    setFontName(input.form.font);
    setColor(input.form.color);

    connect(fontButton, &QPushButton::clicked, this, [this] { cmdFont_Click(); });
    connect(m_colorButton, &QPushButton::clicked, this, [this] { cmdColor_Click(); });
    connect(ok, &QPushButton::clicked, this, [this] { cmdOk_Click(); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

LabelForm FrmLabelProperties::form() const
{
    LabelForm f;
    f.font = m_font;
    f.rotation = m_rotation->text();
    f.height = m_height->text();
    f.color = m_color;
    f.fieldEntry = m_field->currentText();
    return f;
}

void FrmLabelProperties::setColor(std::int32_t color)
{
    m_color = color;
    const QColor c = map::colorFromValue(color);
    // The button carries a swatch of the chosen colour.
    QPixmap swatch(16, 16);
    swatch.fill(c);
    m_colorButton->setIcon(QIcon(swatch));
}

void FrmLabelProperties::setFontName(const QString &font)
{
    m_font = font.isEmpty() ? LabelText::kDefaultFont : familyName(font);
    m_fontName->setText(m_font);
}

void FrmLabelProperties::cmdFont_Click()
{
    const QStringList families = m_families ? uniqueFamilies(*m_families) : installedFontFamilies();
    if (families.isEmpty()) {
        showMessage(MsgStyle::Ok, LabelText::kNoFonts);
        return;
    }
    QString chosen = m_font;
    FrmFont dialog(chosen, families, this);
    dialog.exec();
    setFontName(chosen);
}

void FrmLabelProperties::cmdColor_Click()
{
    const QColor c = QColorDialog::getColor(map::colorFromValue(m_color), this);
    if (c.isValid())
        setColor(map::colorToValue(c));
}

void FrmLabelProperties::cmdOk_Click()
{
    if (!m_apply || m_apply(form()))
        accept();
}

LabelDialogInput labelDialogInput(const map::MapLayer &layer, const StructureTable &structure,
                                  const FieldDescriber &describe)
{
    LabelDialogInput in;
    in.themeName = settingsNameOfLayer(layer.name);
    const QStringList fields = layer.data ? fieldNamesOf(*layer.data) : QStringList();
    in.entries = labelFieldEntries(in.themeName, fields, structure, describe);
    in.form = labelFormFor(layer.labels, in.entries);
    return in;
}

bool runLabelCommand(QWidget *parent, map::MapModel &model, const AtlasHome &home, const AppState &state,
                     const QString &themeName, const QString &shownName)
{
    map::MapLayer *layer = model.find(themeName);
    if (!layer)
        return false;
    const Indicators indicators(state.structure, ReferenceDb(home));
    const FieldDescriber describe = [&](const QString &field) {
        return indicators.fieldToDescription(field, QStringLiteral("00"));
    };
    LabelDialogInput input = labelDialogInput(*layer, state.structure, describe);
    input.title = shownName;
    FrmLabelProperties dialog(input, parent);
    const QString name = settingsNameOfLayer(layer->name);
    LabelTarget target;
    target.themeName = name;
    target.iniPath = resolveCaseInsensitive(home.supporto(), name + QStringLiteral(".ini"));
    target.structure = &state.structure;
    bool applied = false;
    dialog.setApply([&](const LabelForm &form) {
        auto result = SetLabelProperties(form, layer->labels, target);
        if (!result) {
            // A refused value was already explained; anything else is an error.
            if (result.error().code != kLabelInputRefused)
                showMessage(MsgStyle::Critical, result.errorMessage());
            return false;
        }
        applied = result->on();
        return true;
    });
    dialog.exec();
    return applied;
}

}  // namespace mervola
