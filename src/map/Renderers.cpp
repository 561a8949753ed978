#include "map/Renderers.h"

#include <cmath>
#include <unordered_map>

namespace mervola::map {

Symbol ClassBreaksRenderer::transparentSymbol()
{
    Symbol s;
    s.style = 1;
    return s;
}

void ClassBreaksRenderer::setBreakCount(int n)
{
    n = std::max(n, 0);
    m_breaks.resize(std::size_t(n), m_breaks.empty() ? 0.0 : m_breaks.back());
    Symbol s;
    s.symbolType = symbolType;
    m_symbols.resize(std::size_t(n), s);
}

int ClassBreaksRenderer::classOf(double v) const
{
    if (std::isnan(v) || m_breaks.empty())
        return -1;
    for (std::size_t i = 0; i < m_breaks.size(); ++i)
        if (v <= m_breaks[i])
            return int(i);
    return int(m_breaks.size()) - 1;
}

ClassBreaksRenderer ClassBreaksRenderer::fromClasses(const QString &field, const std::vector<ClassRange> &classes,
                                                     SymbolType type)
{
    ClassBreaksRenderer r;
    r.field = field;
    r.symbolType = type;
    r.setBreakCount(int(classes.size()));
    for (std::size_t i = 0; i < classes.size(); ++i) {
        r.m_breaks[i] = classes[i].upper;
        Symbol &s = r.m_symbols[i];
        s.color = classes[i].color;
        s.outlineColor = classes[i].outlineColor;
        s.outline = classes[i].outline;
        s.drawn = classes[i].drawn;
        s.style = classes[i].style;
        s.size = classes[i].size;
    }
    return r;
}

void ValueMapRenderer::setValueCount(int n)
{
    n = std::max(n, 0);
    m_values.resize(std::size_t(n));
    Symbol s;
    s.symbolType = symbolType;
    m_symbols.resize(std::size_t(n), s);
}

bool LabelRenderer::enabled() const
{
    return !field.isEmpty() && field.compare(QLatin1String("dummy"), Qt::CaseInsensitive) != 0;
}

namespace {

ResolvedStyle resolve(const SimpleRenderer &r, const LayerData &d)
{
    return {{r.symbol}, std::vector<int>(std::size_t(d.featureCount()), 0)};
}

// The class symbols followed by the default one, every feature on the
// default until its value says otherwise.
template <class R>
ResolvedStyle withDefault(const R &r, int classes, const LayerData &d)
{
    ResolvedStyle out;
    for (int i = 0; i < classes; ++i)
        out.symbols.push_back(r.symbol(i));
    out.symbols.push_back(r.defaultSymbol);
    out.featureSymbol.assign(std::size_t(d.featureCount()), classes);
    return out;
}

ResolvedStyle resolve(const ClassBreaksRenderer &r, const LayerData &d)
{
    ResolvedStyle out = withDefault(r, r.breakCount(), d);
    const int n = d.featureCount();
    const int dflt = r.breakCount();
    const Column *c = d.column(r.field);
    if (!c)
        return out;
    for (int f = 0; f < n; ++f) {
        const int k = r.classOf(c->number(f));
        out.featureSymbol[std::size_t(f)] = k < 0 ? dflt : k;
    }
    return out;
}

ResolvedStyle resolve(const ValueMapRenderer &r, const LayerData &d)
{
    ResolvedStyle out = withDefault(r, r.valueCount(), d);
    const int n = d.featureCount();
    const Column *c = d.column(r.field);
    if (!c)
        return out;
    if (c->isNumeric()) {
        // The first value that reads as a number wins, as with texts.
        std::unordered_map<double, int> keys;
        for (int i = 0; i < r.valueCount(); ++i) {
            bool ok = false;
            // Unique values may be written with the Italian decimal comma.
            const double v = QString(r.value(i).trimmed()).replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
            if (ok)
                keys.emplace(v, i);
        }
        for (int f = 0; f < n; ++f) {
            if (c->isNull[std::size_t(f)])
                continue;
            const auto it = keys.find(c->numbers[std::size_t(f)]);
            if (it != keys.end())
                out.featureSymbol[std::size_t(f)] = it->second;
        }
        return out;
    }
    std::unordered_map<QString, int> index;
    for (int i = r.valueCount() - 1; i >= 0; --i)
        index[r.value(i).toCaseFolded()] = i;
    for (int f = 0; f < n; ++f) {
        if (c->isNull[std::size_t(f)])
            continue;
        const auto it = index.find(c->texts[std::size_t(f)].toCaseFolded());
        if (it != index.end())
            out.featureSymbol[std::size_t(f)] = it->second;
    }
    return out;
}

}  // namespace

ResolvedStyle resolveStyle(const Renderer &renderer, const LayerData &data)
{
    ResolvedStyle out = std::visit([&](const auto &r) { return resolve(r, data); }, renderer);
    for (int &s : out.featureSymbol)
        if (s >= 0 && !out.symbols[std::size_t(s)].drawn)
            s = -1;
    return out;
}

}  // namespace mervola::map
