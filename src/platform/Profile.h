#pragma once
// INI-style profile files with the semantics of the classic profile-string
// read: sections and keys compare case-insensitively, blanks around key names
// are ignored, values are cut to the buffer size less one, a missing key reads
// as count 0. Files are written UTF-8 with "\n" line ends; a file that is not
// valid UTF-8 is read as Latin-1.

#include "platform/Result.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace mervola {

constexpr int kProfileBufferSize = 10000;

class ProfileFile {
public:
    // A missing or unreadable file gives an empty profile (every key absent).
    static ProfileFile load(const QString &path);
    static ProfileFile fromText(const QString &text);

    // The value of key in section, cut to bufferSize - 1 characters; nullopt when absent.
    std::optional<QString> value(const QString &section, const QString &key,
                                 int bufferSize = kProfileBufferSize) const;
    // Like the profile read: the value and its character count (0 = absent or empty).
    QString read(const QString &section, const QString &key, int *count = nullptr,
                 int bufferSize = kProfileBufferSize) const;
    QStringList sections() const;
    QStringList keys(const QString &section) const;

private:
    struct Entry {
        QString section;  // as written, without brackets
        QString key;      // trimmed
        QString value;    // trimmed
    };
    std::vector<Entry> m_entries;
    QStringList m_sections;
};

// Reads the whole text of a settings or project file (UTF-8, else Latin-1).
Result<QString> readTextFile(const QString &path);
// Splits text into lines, accepting "\r\n", "\n" and "\r".
QStringList splitLines(const QString &text);

// Writes lines the way settings files are always replaced: write
// "<base>.new", then rename it over the old file (replaceFile()).
Status writeLinesReplacing(const QString &path, const QStringList &lines);

// Splits a "^"-separated field list; the empty piece after the last "^" is dropped.
QStringList splitFields(const QString &value, QChar separator = QLatin1Char('^'));
// Joins fields each followed by the separator ("a^b^").
QString joinFields(const QStringList &fields, QChar separator = QLatin1Char('^'));

}  // namespace mervola
