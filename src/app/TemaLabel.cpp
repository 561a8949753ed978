#include "app/TemaLabel.h"
#include "platform/FieldNames.h"

#include "project/SettingsWriters.h"

#include "app/ThemeStyle.h"
#include "platform/Messages.h"
#include "project/ThemeSettings.h"

#include <QRegularExpression>

namespace mervola {

bool TemaLabel::on() const { return !LabelField.isEmpty() && LabelField.compare(LabelText::kNoLabelField, Qt::CaseInsensitive) != 0; }

QString TemaLabel::serialise() const
{
    LabelSettings s;
    s.font = LabelFont;
    s.rotation = LabelRotation;
    s.height = LabelHeight;
    s.color = LabelColor;
    s.field = LabelField;
    return s.format();
}

TemaLabel TemaLabel::parse(const QString &labelValue)
{
    const LabelSettings s = LabelSettings::parse(labelValue);
    return {s.font, s.rotation, s.height, s.color, s.field};
}

TemaLabel TemaLabel::fromRenderer(const map::LabelRenderer &r)
{
    return {r.fontFamily, int(r.rotation), r.height, r.color, r.field};
}

void TemaLabel::applyTo(map::LabelRenderer &r) const
{
    r.fontFamily = LabelFont;
    r.rotation = LabelRotation;
    r.height = LabelHeight;
    r.color = LabelColor;
    r.field = on() ? LabelField : LabelText::kNoLabelField;
}

bool isAtlasTheme(const QString &themeName)
{
    const QString n = themeName.toUpper();
    return n == QLatin1String("COMMONT") || n.startsWith(QLatin1String("CMONT_")) || n == QLatin1String("COMUNI")
           || n.startsWith(QLatin1String("COMU_"));
}

bool isIndicatorField(const QString &field)
{
    static const QRegularExpression re(QStringLiteral("^(I\\d{3}|_\\w{5})$"), QRegularExpression::CaseInsensitiveOption);
    return re.match(field).hasMatch();
}

namespace {

bool isPlaceholder(const QString &field) { return isPlaceholderField(field); }

// The structure row of a field in the theme's own table, else in any table.
const StructureRow *rowOf(const StructureTable &structure, const QString &themeName, const QString &field)
{
    for (const StructureRow &row : structure.rows)
        if (row.tabella.compare(themeName, Qt::CaseInsensitive) == 0
            && row.label.compare(field, Qt::CaseInsensitive) == 0)
            return &row;
    return structure.findByLabel(field);
}

QString textOf(const StructureTable &structure, const QString &themeName, const QString &field,
               const FieldDescriber &describe)
{
    if (const StructureRow *row = rowOf(structure, themeName, field); row && !row->alias.isEmpty())
        return row->alias;
    if (describe) {
        const QString d = describe(field);
        if (!d.isEmpty())
            return d;
    }
    // No match anywhere: the field goes in under its own name.
    return field;
}

}  // namespace

QStringList fieldNamesOf(const map::LayerData &data)
{
    QStringList names;
    for (const map::Column &c : data.columns)
        names << c.name;
    return names;
}

QList<LabelFieldEntry> labelFieldEntries(const QString &themeName, const QStringList &fields,
                                         const StructureTable &structure, const FieldDescriber &describe)
{
    QList<LabelFieldEntry> out;
    if (isAtlasTheme(themeName)) {
        for (const QString &f : fields)
            if (f.compare(QLatin1String("Label"), Qt::CaseInsensitive) == 0)
                out.append({textOf(structure, themeName, f, describe), f});
        for (const QString &f : fields)
            if (isIndicatorField(f))
                out.append({textOf(structure, themeName, f, describe), f});
        return out;
    }
    for (const QString &f : fields)
        if (!isPlaceholder(f))
            out.append({textOf(structure, themeName, f, describe), f});
    return out;
}

QString labelFieldOfEntry(const QString &entry, const QString &themeName, const StructureTable &structure,
                          const DescriptionResolver &resolve)
{
    for (const StructureRow &row : structure.rows)
        if (row.tabella.compare(themeName, Qt::CaseInsensitive) == 0
            && row.alias.compare(entry, Qt::CaseInsensitive) == 0)
            return row.label;
    if (const StructureRow *row = structure.findByAlias(entry))
        return row->label;
    if (resolve) {
        const QString f = resolve(entry);
        if (!f.isEmpty())
            return f;
    }
    return entry;
}

Result<TemaLabel> SetLabelProperties(const LabelForm &form, map::LabelRenderer &renderer, const LabelTarget &target)
{
    TemaLabel t;
    // 1. The font goes on at once, even when a later value is refused.
    t.LabelFont = form.font.isEmpty() ? LabelText::kDefaultFont : form.font;
    renderer.fontFamily = t.LabelFont;

    // 2. and 3. Rotation and height must be given.
    const QString rotation = form.rotation.trimmed();
    if (rotation.isEmpty()) {
        showMessage(MsgStyle::Information, LabelText::kInvalidValue);
        return Result<TemaLabel>::fail(LabelText::kInvalidValue, kLabelInputRefused);
    }
    t.LabelRotation = rotation.toInt();
    renderer.rotation = t.LabelRotation;

    const QString height = form.height.trimmed();
    if (height.isEmpty()) {
        showMessage(MsgStyle::Information, LabelText::kInvalidValue);
        return Result<TemaLabel>::fail(LabelText::kInvalidValue, kLabelInputRefused);
    }
    t.LabelHeight = height.toDouble();
    renderer.height = t.LabelHeight;

    // 4. Colour.
    t.LabelColor = form.color;
    renderer.color = t.LabelColor;

    // 5. The chosen entry is an alias or a description: back to the field.
    static const StructureTable kNoStructure;
    const StructureTable &structure = target.structure ? *target.structure : kNoStructure;
    t.LabelField = labelFieldOfEntry(form.fieldEntry, target.themeName, structure, target.resolve);
    renderer.field = t.LabelField.isEmpty() ? LabelText::kNoLabelField : t.LabelField;

    // 6. Kept in the theme's settings, so a project save carries it.
    if (!target.iniPath.isEmpty()) {
        const QString value = t.on() ? t.serialise() : QStringLiteral("*");
        if (Status st = writeLabelSetting(target.iniPath, target.themeName, value); !st)
            return st.error();
    }
    return t;
}

Status RemoveLabels(map::MapModel &model, const QString &themeName, const QString &iniPath)
{
    const QString wanted = themeName.toUpper();
    for (int i = 0; i < model.layerCount(); ++i)
        if (model.layer(i).name.toUpper() == wanted)
            model.layer(i).labels.field = LabelText::kNoLabelField;
    if (iniPath.isEmpty())
        return {};
    return writeLabelSetting(iniPath, themeName, QStringLiteral("*"));
}

Status writeLabelSetting(const QString &iniPath, const QString &themeName, const QString &labelValue)
{
    return updateThemeKeys(iniPath, themeName, {{ThemeKey::Label, labelValue}});
}

LabelForm labelFormFor(const map::LabelRenderer &renderer, const QList<LabelFieldEntry> &entries)
{
    LabelForm f;
    if (!renderer.enabled()) {
        f.rotation = QStringLiteral("0");
        f.height = QStringLiteral("8");
        if (!entries.isEmpty())
            f.fieldEntry = entries.front().text;
        return f;
    }
    f.font = renderer.fontFamily.isEmpty() ? LabelText::kDefaultFont : renderer.fontFamily;
    f.rotation = QString::number(qRound(renderer.rotation));
    f.height = QString::number(qRound(renderer.height));
    f.color = renderer.color;
    f.fieldEntry = renderer.field;
    for (const LabelFieldEntry &e : entries)
        if (e.field.compare(renderer.field, Qt::CaseInsensitive) == 0)
            f.fieldEntry = e.text;
    return f;
}

}  // namespace mervola
