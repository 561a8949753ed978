#include "platform/JetFunctions.h"

#include <QRegularExpression>
#include <QString>
#include <algorithm>
#include <cmath>
#include <sqlite3.h>

namespace mervola
{

namespace
{

// Welford's running mean and sum of squares: stable for large values.
struct VarianceState {
    sqlite3_int64 n;
    double mean;
    double m2;
};

void varianceStep(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL)
        return;
    auto *s = static_cast<VarianceState *>(sqlite3_aggregate_context(ctx, sizeof(VarianceState)));
    if (!s)
        return;
    const double x = sqlite3_value_double(argv[0]);
    s->n += 1;
    const double d = x - s->mean;
    s->mean += d / double(s->n);
    s->m2 += d * (x - s->mean);
}

void finishVariance(sqlite3_context *ctx, bool sample, bool root)
{
    auto *s = static_cast<VarianceState *>(sqlite3_aggregate_context(ctx, 0));
    const sqlite3_int64 n = s ? s->n : 0;
    const sqlite3_int64 divisor = sample ? n - 1 : n;
    if (divisor <= 0) {
        sqlite3_result_null(ctx); // Jet gives Null for Var of fewer than two values
        return;
    }
    const double v = std::max(0.0, s->m2 / double(divisor));
    sqlite3_result_double(ctx, root ? std::sqrt(v) : v);
}

void varSampleFinal(sqlite3_context *c)
{
    finishVariance(c, true, false);
}
void stdevSampleFinal(sqlite3_context *c)
{
    finishVariance(c, true, true);
}
void varPopFinal(sqlite3_context *c)
{
    finishVariance(c, false, false);
}
void stdevPopFinal(sqlite3_context *c)
{
    finishVariance(c, false, true);
}

QString textArg(sqlite3_value *v)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_value_text(v)), sqlite3_value_bytes(v));
}

void resultText(sqlite3_context *ctx, const QString &s)
{
    const QByteArray u = s.toUtf8();
    sqlite3_result_text(ctx, u.constData(), int(u.size()), SQLITE_TRANSIENT);
}

bool anyNull(int argc, sqlite3_value **argv)
{
    for (int i = 0; i < argc; ++i)
        if (sqlite3_value_type(argv[i]) == SQLITE_NULL)
            return true;
    return false;
}

void ucaseFn(sqlite3_context *c, int n, sqlite3_value **a)
{
    if (anyNull(n, a))
        return sqlite3_result_null(c);
    resultText(c, textArg(a[0]).toUpper());
}

void lcaseFn(sqlite3_context *c, int n, sqlite3_value **a)
{
    if (anyNull(n, a))
        return sqlite3_result_null(c);
    resultText(c, textArg(a[0]).toLower());
}

void lenFn(sqlite3_context *c, int n, sqlite3_value **a)
{
    if (anyNull(n, a))
        return sqlite3_result_null(c);
    sqlite3_result_int64(c, textArg(a[0]).size());
}

// Mid(text, start[, length]) with a 1-based start.
void midFn(sqlite3_context *c, int n, sqlite3_value **a)
{
    if (anyNull(n, a))
        return sqlite3_result_null(c);
    const QString s = textArg(a[0]);
    const int start = std::max(1, sqlite3_value_int(a[1]));
    resultText(c, n > 2 ? s.mid(start - 1, std::max(0, sqlite3_value_int(a[2]))) : s.mid(start - 1));
}

void iifFn(sqlite3_context *c, int, sqlite3_value **a)
{
    const bool cond = sqlite3_value_type(a[0]) != SQLITE_NULL && sqlite3_value_double(a[0]) != 0.0;
    sqlite3_result_value(c, cond ? a[1] : a[2]);
}

void nzFn(sqlite3_context *c, int n, sqlite3_value **a)
{
    if (sqlite3_value_type(a[0]) != SQLITE_NULL)
        sqlite3_result_value(c, a[0]);
    else if (n > 1)
        sqlite3_result_value(c, a[1]);
    else
        sqlite3_result_int(c, 0);
}

// Val reads the leading number of a text as Jet does: blanks anywhere are
// ignored, one decimal point, an optional exponent ("12abc" -> 12,
// " 1 615 rue" -> 1615, "1.2.3" -> 1.2, "2e3x" -> 2000).
void valFn(sqlite3_context *c, int n, sqlite3_value **a)
{
    if (anyNull(n, a))
        return sqlite3_result_null(c);
    QString s = textArg(a[0]);
    s.remove(QRegularExpression(QStringLiteral("\\s")));
    int end = 0;
    const auto digits = [&] {
        const int start = end;
        while (end < s.size() && s[end].isDigit())
            ++end;
        return end > start;
    };
    if (end < s.size() && (s[end] == QLatin1Char('-') || s[end] == QLatin1Char('+')))
        ++end;
    digits();
    if (end < s.size() && s[end] == QLatin1Char('.')) {
        ++end;
        digits();
    }
    if (end + 1 < s.size() && QStringLiteral("eEdD").contains(s[end])) {
        int e = end + 1;
        if (s[e] == QLatin1Char('-') || s[e] == QLatin1Char('+'))
            ++e;
        if (e < s.size() && s[e].isDigit()) {
            end = e;
            digits();
        }
    }
    QString number = s.left(end);
    number.replace(QLatin1Char('d'), QLatin1Char('e')).replace(QLatin1Char('D'), QLatin1Char('e'));
    sqlite3_result_double(c, number.toDouble());
}

void cstrFn(sqlite3_context *c, int n, sqlite3_value **a)
{
    if (anyNull(n, a))
        return sqlite3_result_null(c);
    resultText(c, textArg(a[0]));
}

void cdblFn(sqlite3_context *c, int n, sqlite3_value **a)
{
    if (anyNull(n, a))
        return sqlite3_result_null(c);
    sqlite3_result_double(c, sqlite3_value_double(a[0]));
}

void clngFn(sqlite3_context *c, int n, sqlite3_value **a)
{
    if (anyNull(n, a))
        return sqlite3_result_null(c);
    sqlite3_result_int64(c, sqlite3_int64(std::nearbyint(sqlite3_value_double(a[0]))));
}

void intFn(sqlite3_context *c, int n, sqlite3_value **a)
{
    if (anyNull(n, a))
        return sqlite3_result_null(c);
    sqlite3_result_double(c, std::floor(sqlite3_value_double(a[0])));
}

void fixFn(sqlite3_context *c, int n, sqlite3_value **a)
{
    if (anyNull(n, a))
        return sqlite3_result_null(c);
    sqlite3_result_double(c, std::trunc(sqlite3_value_double(a[0])));
}

void addScalar(sqlite3 *db, const char *name, int nargs, void (*fn)(sqlite3_context *, int, sqlite3_value **))
{
    sqlite3_create_function_v2(db, name, nargs, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, fn, nullptr, nullptr,
                               nullptr);
}

void addAggregate(sqlite3 *db, const char *name, void (*final)(sqlite3_context *))
{
    sqlite3_create_function_v2(db, name, 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, nullptr, varianceStep, final,
                               nullptr);
}

} // namespace

void registerJetFunctions(sqlite3 *db)
{
    addAggregate(db, "Var", varSampleFinal);
    addAggregate(db, "StDev", stdevSampleFinal);
    addAggregate(db, "VarP", varPopFinal);
    addAggregate(db, "StDevP", stdevPopFinal);
    addScalar(db, "UCase", 1, ucaseFn);
    addScalar(db, "LCase", 1, lcaseFn);
    addScalar(db, "Len", 1, lenFn);
    addScalar(db, "Mid", 2, midFn);
    addScalar(db, "Mid", 3, midFn);
    addScalar(db, "IIf", 3, iifFn);
    addScalar(db, "Nz", 1, nzFn);
    addScalar(db, "Nz", 2, nzFn);
    addScalar(db, "Val", 1, valFn);
    addScalar(db, "CStr", 1, cstrFn);
    addScalar(db, "CDbl", 1, cdblFn);
    addScalar(db, "CLng", 1, clngFn);
    addScalar(db, "Int", 1, intFn);
    addScalar(db, "Fix", 1, fixFn);
}

} // namespace mervola
