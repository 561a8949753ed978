// Searches over layer data: expression matching, hit tests, label points.
#include "map/MapModel.h"

#include <QRegularExpression>
#include <cmath>
#include <limits>

namespace mervola::map {

namespace {

enum class Op { Eq, Ne, Lt, Gt, Le, Ge, Like };

struct Parsed {
    QString field;
    Op op = Op::Eq;
    bool isText = false;
    QString text;
    double number = 0;
};

Result<Parsed> parseExpression(const QString &expr)
{
    const QString e = expr.trimmed();
    static const QRegularExpression re(
        QStringLiteral(R"(^\[?([^\[\]=<>\s]+)\]?\s*(<>|<=|>=|=|<|>|\blike\b)\s*(.*)$)"),
        QRegularExpression::CaseInsensitiveOption);
    const auto m = re.match(e);
    if (!m.hasMatch())
        return Error{QStringLiteral("Espressione non valida: %1").arg(expr)};
    Parsed p;
    p.field = m.captured(1);
    const QString op = m.captured(2).toLower();
    p.op = op == QLatin1String("=")    ? Op::Eq
           : op == QLatin1String("<>") ? Op::Ne
           : op == QLatin1String("<")  ? Op::Lt
           : op == QLatin1String(">")  ? Op::Gt
           : op == QLatin1String("<=") ? Op::Le
           : op == QLatin1String(">=") ? Op::Ge
                                       : Op::Like;
    const QString lit = m.captured(3).trimmed();
    if (lit.size() >= 2 && (lit.front() == QLatin1Char('\'') || lit.front() == QLatin1Char('"')) &&
        lit.back() == lit.front()) {
        const QChar q = lit.front();
        QString inner = lit.mid(1, lit.size() - 2);
        // A lone quote inside the literal would end it: refuse it.
        const QString doubled = QString(2, q);
        if (QString(inner).remove(doubled).contains(q))
            return Error{QStringLiteral("Espressione non valida: %1").arg(expr)};
        p.isText = true;
        p.text = inner.replace(doubled, QString(q));
        return p;
    }
    bool ok = false;
    p.number = lit.toDouble(&ok);
    if (!ok)
        return Error{QStringLiteral("Espressione non valida: %1").arg(expr)};
    return p;
}

template <class T>
bool compare(Op op, const T &a, const T &b)
{
    switch (op) {
    case Op::Eq: return a == b;
    case Op::Ne: return a != b;
    case Op::Lt: return a < b;
    case Op::Gt: return a > b;
    case Op::Le: return a <= b;
    case Op::Ge: return a >= b;
    case Op::Like: return a == b;
    }
    return false;
}

QRegularExpression likePattern(const QString &pattern)
{
    QString rx;
    for (const QChar c : pattern) {
        if (c == QLatin1Char('*') || c == QLatin1Char('%'))
            rx += QStringLiteral(".*");
        else if (c == QLatin1Char('?') || c == QLatin1Char('_'))
            rx += QLatin1Char('.');
        else
            rx += QRegularExpression::escape(QString(c));
    }
    return QRegularExpression(QRegularExpression::anchoredPattern(rx), QRegularExpression::CaseInsensitiveOption);
}

double distanceToSegment(QPointF p, double x1, double y1, double x2, double y2)
{
    const double dx = x2 - x1, dy = y2 - y1;
    const double len2 = dx * dx + dy * dy;
    double t = len2 > 0 ? ((p.x() - x1) * dx + (p.y() - y1) * dy) / len2 : 0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(p.x() - (x1 + t * dx), p.y() - (y1 + t * dy));
}

}  // namespace

Result<std::vector<int>> findFeatures(const LayerData &data, const QString &expression)
{
    auto parsed = parseExpression(expression);
    if (!parsed)
        return parsed.error();
    const Parsed &p = *parsed;
    const Column *c = data.column(p.field);
    if (!c)
        return Error{QStringLiteral("Campo non trovato: %1").arg(p.field)};
    std::vector<int> out;
    const int n = data.featureCount();
    if (p.op == Op::Like) {
        const QRegularExpression rx = likePattern(p.isText ? p.text : QString::number(p.number));
        for (int f = 0; f < n; ++f)
            if (!c->isNull[std::size_t(f)] && rx.match(c->text(f)).hasMatch())
                out.push_back(f);
        return out;
    }
    if (p.isText && !c->isNumeric()) {
        const QString key = p.text.toCaseFolded();
        for (int f = 0; f < n; ++f)
            if (!c->isNull[std::size_t(f)] && compare(p.op, c->texts[std::size_t(f)].toCaseFolded(), key))
                out.push_back(f);
        return out;
    }
    double key = p.number;
    if (p.isText) {
        bool ok = false;
        key = p.text.trimmed().toDouble(&ok);
        if (!ok)
            return out;  // a text that is no number matches no numeric value
    }
    for (int f = 0; f < n; ++f) {
        const double v = c->number(f);
        if (!std::isnan(v) && compare(p.op, v, key))
            out.push_back(f);
    }
    return out;
}

bool polygonContains(const LayerData &d, int feature, QPointF p)
{
    bool inside = false;
    for (std::uint32_t r = d.featureRing[std::size_t(feature)]; r < d.featureRing[std::size_t(feature) + 1]; ++r) {
        const std::uint32_t a = d.ringStart[r], b = d.ringStart[r + 1];
        if (b - a < 3)
            continue;
        for (std::uint32_t i = a, j = b - 1; i < b; j = i++) {
            const double xi = d.xy[2 * i], yi = d.xy[2 * i + 1], xj = d.xy[2 * j], yj = d.xy[2 * j + 1];
            if ((yi > p.y()) != (yj > p.y()) && p.x() < (xj - xi) * (p.y() - yi) / (yj - yi) + xi)
                inside = !inside;
        }
    }
    return inside;
}

std::vector<int> hitTest(const LayerData &data, QPointF p, double tolerance)
{
    std::vector<int> out;
    for (int f : data.candidatesAt(p, tolerance)) {
        bool hit = false;
        if (data.kind == GeometryKind::Polygon) {
            hit = polygonContains(data, f, p);
        } else {
            for (std::uint32_t r = data.featureRing[std::size_t(f)]; !hit && r < data.featureRing[std::size_t(f) + 1];
                 ++r) {
                const std::uint32_t a = data.ringStart[r], b = data.ringStart[r + 1];
                if (b - a == 1)
                    hit = std::hypot(p.x() - data.xy[2 * a], p.y() - data.xy[2 * a + 1]) <= tolerance;
                for (std::uint32_t i = a + 1; !hit && i < b; ++i)
                    hit = distanceToSegment(p, data.xy[2 * i - 2], data.xy[2 * i - 1], data.xy[2 * i],
                                            data.xy[2 * i + 1]) <= tolerance;
            }
        }
        if (hit)
            out.push_back(f);
    }
    return out;
}

QPointF labelPoint(const LayerData &d, int feature)
{
    const std::size_t f = std::size_t(feature);
    const std::uint32_t r0 = d.featureRing[f], r1 = d.featureRing[f + 1];
    if (r0 == r1)
        return {};
    if (d.kind != GeometryKind::Polygon) {
        // Middle vertex of the first part.
        const std::uint32_t a = d.ringStart[r0], b = d.ringStart[r0 + 1];
        const std::uint32_t m = a + (b - a) / 2;
        return {d.xy[2 * m], d.xy[2 * m + 1]};
    }
    // Centroid of the ring with the largest area.
    double bestArea = -1;
    QPointF best;
    for (std::uint32_t r = r0; r < r1; ++r) {
        const std::uint32_t a = d.ringStart[r], b = d.ringStart[r + 1];
        double area = 0, cx = 0, cy = 0;
        for (std::uint32_t i = a, j = b - 1; i < b; j = i++) {
            const double cross = d.xy[2 * j] * d.xy[2 * i + 1] - d.xy[2 * i] * d.xy[2 * j + 1];
            area += cross;
            cx += (d.xy[2 * j] + d.xy[2 * i]) * cross;
            cy += (d.xy[2 * j + 1] + d.xy[2 * i + 1]) * cross;
        }
        if (std::abs(area) > bestArea && area != 0) {
            bestArea = std::abs(area);
            best = QPointF(cx / (3 * area), cy / (3 * area));
        }
    }
    if (bestArea < 0)
        return d.featureExtent(feature).center();
    if (polygonContains(d, feature, best))
        return best;
    // Concave shape: take the middle of the widest inside span on the
    // horizontal line through the centroid.
    std::vector<double> xs;
    for (std::uint32_t r = r0; r < r1; ++r) {
        const std::uint32_t a = d.ringStart[r], b = d.ringStart[r + 1];
        for (std::uint32_t i = a, j = b - 1; i < b; j = i++) {
            const double yi = d.xy[2 * i + 1], yj = d.xy[2 * j + 1];
            if ((yi > best.y()) != (yj > best.y()))
                xs.push_back(d.xy[2 * i] + (best.y() - yi) * (d.xy[2 * j] - d.xy[2 * i]) / (yj - yi));
        }
    }
    std::sort(xs.begin(), xs.end());
    double widest = -1;
    QPointF out = best;
    for (std::size_t i = 0; i + 1 < xs.size(); i += 2)
        if (xs[i + 1] - xs[i] > widest) {
            widest = xs[i + 1] - xs[i];
            out = QPointF((xs[i] + xs[i + 1]) / 2, best.y());
        }
    return out;
}

}  // namespace mervola::map
