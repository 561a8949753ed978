#include "app/ThemeStyle.h"

#include "classify/ClassRange.h"


namespace mervola {

LabelSettings LabelSettings::parse(const QString &value)
{
    LabelSettings s;
    const QString v = value.trimmed();
    if (v.isEmpty() || v == QLatin1String("*"))
        return s;
    if (!v.contains(QLatin1Char('^'))) {
        s.field = v;
        return s;
    }
    const QStringList f = splitFields(v);
    if (f.size() > 0 && !f[0].isEmpty())
        s.font = f[0];
    if (f.size() > 1)
        s.rotation = f[1].toInt();
    if (f.size() > 2) {
        bool ok = false;
        const double h = QString(f[2]).replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
        if (ok && h > 0)
            s.height = h;
    }
    if (f.size() > 3)
        s.color = f[3].toInt();
    if (f.size() > 4)
        s.field = f[4];
    return s;
}

QString LabelSettings::format() const
{
    return joinFields({font, QString::number(rotation), QString::number(height), QString::number(color), field});
}

map::Symbol symbolFromSettings(const SymbolFields &fields, bool outline)
{
    map::Symbol s;
    s.symbolType = map::SymbolType(std::clamp(fields.symbolType, 0, 2));
    s.size = fields.size;
    s.style = fields.style;
    s.color = fields.color;
    s.outlineColor = fields.outlineColor;
    s.outline = outline;
    return s;
}

SymbolFields symbolFieldsOf(const map::Symbol &symbol)
{
    SymbolFields f;
    f.symbolType = int(symbol.symbolType);
    f.size = symbol.size;
    f.style = symbol.style;
    f.color = symbol.color;
    f.outlineColor = symbol.outlineColor;
    return f;
}

bool parseClassRange(const QString &value, double *lower, double *upper)
{
    return classify::parseRangeText(value, lower, upper);
}

map::Renderer rendererFromSettings(const ThemeSettings &s)
{
    const map::Symbol base = symbolFromSettings(s.symbol, s.outline);
    const bool classified = s.classificationType != QLatin1String("0") && !s.classificationType.isEmpty()
                            && !s.classes.isEmpty() && !s.campo.field.isEmpty() && s.campo.field != QLatin1String("0");
    if (!classified)
        return map::SimpleRenderer{base};

    auto symbolOf = [&](const ClassItem &c) {
        map::Symbol sym = base;
        sym.style = c.symbolStyle;
        sym.color = c.fillColor;
        sym.outlineColor = c.outlineColor;
        sym.outline = c.outline != QLatin1String("0");
        sym.drawn = c.drawn != QLatin1String("0");
        return sym;
    };
    if (s.classificationType.compare(QLatin1String("UNICO"), Qt::CaseInsensitive) == 0) {
        map::ValueMapRenderer r;
        r.field = s.campo.field;
        r.symbolType = base.symbolType;
        r.setValueCount(int(s.classes.size()));
        for (int i = 0; i < s.classes.size(); ++i) {
            r.setValue(i, s.classes[i].value);
            r.symbol(i) = symbolOf(s.classes[i]);
        }
        return r;
    }
    map::ClassBreaksRenderer r;
    r.field = s.campo.field;
    r.symbolType = base.symbolType;
    r.setBreakCount(int(s.classes.size()));
    for (int i = 0; i < s.classes.size(); ++i) {
        double lo = 0, hi = 0;
        if (!parseClassRange(s.classes[i].value, &lo, &hi)) {
            if (!classify::parseLimit(s.classes[i].value, &hi))
                return map::SimpleRenderer{base};
        }
        r.setBreak(i, hi);
        r.symbol(i) = symbolOf(s.classes[i]);
    }
    return r;
}

map::LabelRenderer labelsFromSettings(const ThemeSettings &s)
{
    const LabelSettings l = LabelSettings::parse(s.labelField);
    map::LabelRenderer r;
    r.field = l.on() ? l.field : QStringLiteral("dummy");
    r.fontFamily = l.font;
    r.height = l.height;
    r.rotation = l.rotation;
    r.color = l.color;
    return r;
}

std::vector<int> classCounts(const map::MapLayer &layer)
{
    int classes = 0;
    map::Renderer counted = layer.renderer;
    // A class whose symbol is not drawn still has its elements.
    if (auto *cb = std::get_if<map::ClassBreaksRenderer>(&counted)) {
        classes = cb->breakCount();
        for (int c = 0; c < classes; ++c)
            cb->symbol(c).drawn = true;
    } else if (auto *vm = std::get_if<map::ValueMapRenderer>(&counted)) {
        classes = vm->valueCount();
        for (int c = 0; c < classes; ++c)
            vm->symbol(c).drawn = true;
    }
    if (!layer.data || classes == 0)
        return {};
    // The symbols the map draws with: symbol c is class c, the one after the
    // classes the default of elements without a class.
    std::vector<int> counts(size_t(classes), 0);
    for (int s : map::resolveStyle(counted, *layer.data).featureSymbol)
        if (s >= 0 && s < classes)
            ++counts[size_t(s)];
    return counts;
}

void applyThemeSettings(map::MapLayer &layer, const ThemeSettings &settings)
{
    if (settings.has(ThemeKey::Visibile))
        layer.visible = settings.visible;
    if (settings.has(ThemeKey::Simbolo) || settings.has(ThemeKey::Classificazione))
        layer.renderer = rendererFromSettings(settings);
    layer.labels = labelsFromSettings(settings);
}

}  // namespace mervola
