#include "app/ui/ThemeClassification.h"
#include "platform/FieldNames.h"

#include "classify/ClassItems.h"
#include "project/SettingsWriters.h"

#include <QHash>

namespace mervola {

QList<Indicator> readIndicators(const ReferenceDb &db)
{
    QList<Indicator> out;
    auto rows = db.query(QStringLiteral("SELECT cod_ind, ind, Cat, Fonte, Unita FROM INDICATORI ORDER BY cod_ind"));
    if (!rows)
        return out;
    for (const auto &r : rows->rows)
        out.append({r[0].toString(), r[1].toString(), r[2].toString(), r[3].toString(), r[4].toString()});
    return out;
}

const Indicator *indicatorOf(const QList<Indicator> &list, const QString &field)
{
    if (field.startsWith(QLatin1Char('_'))) {
        const QString code = field.mid(1);
        for (const Indicator &i : list)
            if (i.code.compare(code, Qt::CaseInsensitive) == 0)
                return &i;
    } else if (field.size() == 4 && field.startsWith(QLatin1Char('I'), Qt::CaseInsensitive)) {
        const QString digits = field.right(3);
        for (const Indicator &i : list)
            if (i.code.size() == 5 && i.code.endsWith(digits))
                return &i;
    }
    return nullptr;
}

QList<classify::CandidateField> candidateFields(const map::LayerData &data, const StructureTable &structure,
                                                const ReferenceDb &db)
{
    const QList<Indicator> indicators = readIndicators(db);
    QList<classify::CandidateField> first, rest, texts;
    for (const map::Column &c : data.columns) {
        if (isPlaceholderField(c.name))
            continue;
        if (const Indicator *i = indicatorOf(indicators, c.name); i && c.isNumeric()) {
            first.append({c.name, i->description, i->category});
            continue;
        }
        const StructureRow *row = structure.findByLabel(c.name);
        const QString shown = row && !row->alias.isEmpty() ? row->alias : c.name;
        (c.isNumeric() ? rest : texts).append({c.name, shown, QString(), c.isNumeric()});
    }
    return first + rest + texts;
}

std::optional<classify::Classification> savedClassification(const ThemeSettings &s)
{
    return classify::classificationFromSettings(s.rawValue(ThemeKey::TipoClassificazione), s.rawValue(ThemeKey::Campo),
                                                s.rawValue(ThemeKey::Classificazione));
}

Status storeClassification(const QString &iniPath, const QString &theme, const classify::Classification &c)
{
    return updateThemeKeys(iniPath, theme,
                           {{ThemeKey::TipoClassificazione, classify::tipoValue(c)},
                            {ThemeKey::Campo, classify::campoValue(c)},
                            {ThemeKey::Classificazione, classify::classificazioneValue(c.classes)}});
}

classify::LegendEntry legendEntryOf(const ThemeSettings &s, const QString &alias)
{
    classify::LegendEntry e;
    e.theme = alias;
    e.visible = s.visible;
    e.fillColor = s.symbol.color;
    e.outlineColor = s.symbol.outlineColor;
    e.outline = s.outline;
    if (auto c = savedClassification(s))
        e.classification = *c;
    return e;
}

Status storeLegendEntry(const QString &iniPath, const QString &theme, const ThemeSettings &old,
                        const classify::LegendEntry &e)
{
    SymbolFields symbol = old.symbol;
    symbol.color = e.fillColor;
    symbol.outlineColor = e.outlineColor;
    QList<QPair<ThemeKey, QString>> values = {
        {ThemeKey::Simbolo, symbol.format()},
        {ThemeKey::Outline, e.outline ? QStringLiteral("1") : QStringLiteral("0")},
        {ThemeKey::Visibile, e.visible ? QStringLiteral("1") : QStringLiteral("0")},
    };
    if (!e.classification.isEmpty())
        values.append({ThemeKey::Classificazione, classify::classificazioneValue(e.classification.classes)});
    return updateThemeKeys(iniPath, theme, values);
}

}  // namespace mervola
