#include "classify/ClassifyTexts.h"
#include "classify/Methods.h"
#include "platform/Messages.h"

#include <QSet>
#include <algorithm>

namespace mervola::classify {

QStringList UniqueValueMethod::distinctValues(const FieldColumn &column)
{
    QStringList out;
    if (column.numeric) {
        std::vector<double> sorted = column.sortedNumbers();
        sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
        out.reserve(qsizetype(sorted.size()));
        for (double v : sorted)
            out << formatLimit(v);
        return out;
    }
    QSet<QString> seen;
    for (const QString &s : column.texts)
        if (!s.isNull() && !seen.contains(s)) {
            seen.insert(s);
            out << s;
        }
    // Text sorts without regard to case, as the table engine orders it.
    std::sort(out.begin(), out.end(), [](const QString &a, const QString &b) {
        const int c = a.compare(b, Qt::CaseInsensitive);
        return c != 0 ? c < 0 : a < b;
    });
    return out;
}

UniqueValueMethod::Breaks UniqueValueMethod::calculateBreaks(const FieldColumn &column, int, Questions questions) const
{
    Breaks out;
    const QStringList values = distinctValues(column);
    if (values.isEmpty()) {
        out.status = ClassifyStatus::NoData;
        return out;
    }
    if (questions == Questions::Ask) {
        if (values.size() >= 500) {
            showMessage(MsgStyle::Critical, texts::kTooManyValues);
            out.status = ClassifyStatus::Refused;
            return out;
        }
        if (values.size() > 50
            && showMessage(MsgStyle::YesNo | MsgStyle::Exclamation | MsgStyle::DefaultButton2,
                           texts::kManyValuesUnique)
                   == MsgAnswer::No) {
            out.status = ClassifyStatus::Declined;
            return out;
        }
    }
    out.ranges.resize(size_t(values.size()));
    for (qsizetype i = 0; i < values.size(); ++i) {
        ClassRange &r = out.ranges[size_t(i)];
        r.valueText = values[i];
        double v = 0;
        if (column.numeric && parseLimit(values[i], &v))
            r.lower = r.upper = v;
    }
    return out;
}

}  // namespace mervola::classify
