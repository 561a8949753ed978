#pragma once
// How a layer is drawn, as copyable values with no GUI inside: a simple
// symbol, classes of a numeric field (class breaks), or a symbol per value
// (value map); plus the label settings.
//
// The renderer properties `Field`, `BreakCount`, `Break(i)`, `Symbol(i)` are
// field(), breakCount(), breakValue(i), symbol(i); `ValueCount` and
// `Value(i)` are valueCount() and value(i).

#include "map/LayerData.h"
#include "map/MapTypes.h"

#include <QString>
#include <variant>
#include <vector>

namespace mervola::map {

struct SimpleRenderer {
    Symbol symbol;
    bool operator==(const SimpleRenderer &) const = default;
};

// One class as the classification produces it: limits, legend text and its
// symbol's colours and flags.
struct ClassRange {
    double lower = 0;
    double upper = 0;
    QString label;
    std::int32_t color = 0;
    std::int32_t outlineColor = 0x02000000;
    bool outline = true;
    bool drawn = true;
    int style = 0;
    int size = 0;
};

// Class i holds the values v with breakValue(i - 1) < v <= breakValue(i); the
// first class also takes everything below its limit and the last class
// everything above. Missing values use defaultSymbol.
class ClassBreaksRenderer {
public:
    QString field;
    SymbolType symbolType = SymbolType::Fill;
    Symbol defaultSymbol = transparentSymbol();

    int breakCount() const { return int(m_breaks.size()); }
    void setBreakCount(int n);  // keeps existing breaks and symbols
    double breakValue(int i) const { return m_breaks.at(std::size_t(i)); }
    void setBreak(int i, double upper) { m_breaks.at(std::size_t(i)) = upper; }
    Symbol &symbol(int i) { return m_symbols.at(std::size_t(i)); }
    const Symbol &symbol(int i) const { return m_symbols.at(std::size_t(i)); }

    int classOf(double value) const;  // -1 for NaN or no classes

    static ClassBreaksRenderer fromClasses(const QString &field, const std::vector<ClassRange> &classes,
                                           SymbolType type = SymbolType::Fill);
    static Symbol transparentSymbol();
    bool operator==(const ClassBreaksRenderer &) const = default;

private:
    std::vector<double> m_breaks;
    std::vector<Symbol> m_symbols;
};

// Features whose field, as text, equals value(i) take symbol(i). Text compares
// without regard to case; numbers compare by value.
class ValueMapRenderer {
public:
    QString field;
    SymbolType symbolType = SymbolType::Fill;
    Symbol defaultSymbol = ClassBreaksRenderer::transparentSymbol();

    int valueCount() const { return int(m_values.size()); }
    void setValueCount(int n);
    const QString &value(int i) const { return m_values.at(std::size_t(i)); }
    void setValue(int i, const QString &v) { m_values.at(std::size_t(i)) = v; }
    Symbol &symbol(int i) { return m_symbols.at(std::size_t(i)); }
    const Symbol &symbol(int i) const { return m_symbols.at(std::size_t(i)); }
    bool operator==(const ValueMapRenderer &) const = default;

private:
    std::vector<QString> m_values;
    std::vector<Symbol> m_symbols;
};

using Renderer = std::variant<SimpleRenderer, ClassBreaksRenderer, ValueMapRenderer>;

// Labels drawn at each feature's representative point. A field named
// "dummy" (any case) or an empty field draws nothing.
struct LabelRenderer {
    QString field;
    QString fontFamily = QStringLiteral("Arial");
    double height = 8;    // points
    double rotation = 0;  // degrees, counter-clockwise
    std::int32_t color = 0;

    bool enabled() const;
    bool operator==(const LabelRenderer &) const = default;
};

// The symbols of a renderer resolved for a layer: symbol index per feature
// (-1 = not drawn) into `symbols`. Symbols with drawn = false resolve to -1.
struct ResolvedStyle {
    std::vector<Symbol> symbols;
    std::vector<int> featureSymbol;
};
ResolvedStyle resolveStyle(const Renderer &renderer, const LayerData &data);

}  // namespace mervola::map
