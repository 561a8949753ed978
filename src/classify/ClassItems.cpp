#include "classify/ClassItems.h"

#include "platform/Profile.h"

#include <QStringList>

namespace mervola::classify {

namespace {

// The field and item separators cannot live inside a text field.
QString fieldSafe(QString s)
{
    s.replace(QLatin1Char('^'), QLatin1Char(' '));
    s.replace(QLatin1Char('|'), QLatin1Char(' '));
    return s;
}

QString flag(bool b) { return b ? QStringLiteral("1") : QStringLiteral("0"); }

std::int32_t toInt32(const QString &s)
{
    bool ok = false;
    const qlonglong v = s.trimmed().toLongLong(&ok);
    return ok ? std::int32_t(quint32(v)) : 0;  // 32-bit wrap as the settings store it
}

qint16 toInt16(const QString &s)
{
    bool ok = false;
    const int v = s.trimmed().toInt(&ok);
    return ok ? qint16(v) : qint16(0);
}

}  // namespace

QString classItem(const ClassRange &r)
{
    return joinFields({QString::number(r.style), fieldSafe(r.valueText), flag(r.outline), QString::number(r.fillColor),
                       fieldSafe(r.label), QString::number(r.outlineColor), flag(r.drawn)});
}

ClassRange parseClassItem(const QString &item)
{
    const QStringList f = splitFields(item);
    auto at = [&f](int i) { return i < f.size() ? f[i] : QString(); };
    ClassRange r;
    r.style = toInt16(at(0));
    r.valueText = at(1);
    r.outline = f.size() > 2 ? at(2).trimmed() != QLatin1String("0") : true;
    r.fillColor = toInt32(at(3));
    r.label = at(4);
    r.outlineColor = toInt32(at(5));
    r.drawn = f.size() > 6 ? at(6).trimmed() != QLatin1String("0") : true;
    double lo = 0, hi = 0;
    if (parseRangeText(r.valueText, &lo, &hi)) {
        r.lower = lo;
        r.upper = hi;
    } else if (parseLimit(r.valueText, &lo)) {
        r.lower = r.upper = lo;
    }
    return r;
}

QString classificazioneValue(const std::vector<ClassRange> &classes)
{
    if (classes.empty())
        return QStringLiteral("0");
    QString out;
    for (const ClassRange &r : classes)
        out += classItem(r) + QLatin1Char('|');
    return out;
}

std::vector<ClassRange> parseClassificazione(const QString &value)
{
    std::vector<ClassRange> out;
    const QString v = value.trimmed();
    if (v.isEmpty() || v == QLatin1String("0"))
        return out;
    for (const QString &item : splitFields(v, QLatin1Char('|')))
        if (!item.trimmed().isEmpty())
            out.push_back(parseClassItem(item));
    return out;
}

QString campoValue(const Classification &c)
{
    const QString field = c.field.isEmpty() ? QStringLiteral("0") : c.field;
    const int n = c.requestedClasses > 0 ? c.requestedClasses : int(c.classes.size());
    return joinFields({field, QString::number(qint16(n)), QString::number(qint16(c.methodIndex)),
                       QString::number(qint16(c.rampIndex))});
}

CampoFields parseCampo(const QString &value)
{
    const QStringList f = splitFields(value.trimmed());
    CampoFields c;
    c.field = f.value(0);
    c.classes = toInt16(f.value(1));
    c.methodIndex = toInt16(f.value(2));
    c.rampIndex = toInt16(f.value(3));
    return c;
}

QString tipoValue(const Classification &c)
{
    return c.classes.empty() || c.method.isEmpty() ? QStringLiteral("0") : c.method;
}

std::optional<Classification> classificationFromSettings(const QString &tipo, const QString &campo,
                                                         const QString &classificazione)
{
    const QString method = tipo.trimmed().toUpper();
    if (method.isEmpty() || method == QLatin1String("0"))
        return std::nullopt;
    Classification c;
    c.method = method;
    const CampoFields f = parseCampo(campo);
    c.field = f.field;
    c.requestedClasses = f.classes;
    c.methodIndex = f.methodIndex;
    c.rampIndex = f.rampIndex;
    c.uniqueValues = method == kUnico;
    c.classes = parseClassificazione(classificazione);
    return c;
}

}  // namespace mervola::classify
