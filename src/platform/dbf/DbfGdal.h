#pragma once
// GDAL plumbing shared by the dBase reader and writer (internal).

#include <QList>
#include <QString>

namespace mervola::dbfdetail
{

// Registers the GDAL drivers once per process.
void ensureGdal();

// Silences GDAL's console output for its lifetime and keeps the last error.
class GdalErrorScope
{
public:
    GdalErrorScope();
    ~GdalErrorScope();
    GdalErrorScope(const GdalErrorScope &) = delete;
    GdalErrorScope &operator=(const GdalErrorScope &) = delete;
    QString lastMessage() const; // GDAL's own text, empty when none
};

// The header's 32-byte field descriptors, in field order. Empty when the
// header cannot be read.
QList<QByteArray> fieldDescriptors(const QString &dbfPath);

// The header's declared field types, in field order ('C', 'N', 'F', 'L', 'D', 'M' ...).
// Empty when the header cannot be read.
QByteArray nativeFieldTypes(const QString &dbfPath);

bool isUtf8Encoding(const QString &encoding);
bool isLatin1Encoding(const QString &encoding);

} // namespace mervola::dbfdetail
