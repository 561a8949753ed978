#pragma once
// A comma-separated text table with one header row (UTF-8, "\n" or "\r\n"
// line ends, fields optionally enclosed in double quotes).

#include "platform/Result.h"

#include <QHash>
#include <QStringList>
#include <vector>

namespace mervola::atlas {

struct SourceTable {
    QStringList header;
    std::vector<QStringList> rows;  // every row padded to the header's width

    int column(const QString &name) const;  // case-insensitive, -1 when absent
    // The row as column name -> value.
    QHash<QString, QString> record(size_t row) const;
};

SourceTable parseCsv(const QString &text, QChar separator = QLatin1Char(','));
Result<SourceTable> readCsv(const QString &path, QChar separator = QLatin1Char(','));

}  // namespace mervola::atlas
