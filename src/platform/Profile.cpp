#include "platform/Profile.h"

#include "platform/FileReplace.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace mervola {

Result<QString> readTextFile(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return Result<QString>::fail(QStringLiteral("Impossibile leggere il file %1.").arg(path));
    const QByteArray bytes = f.readAll();
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8(bytes);
    if (utf8.hasError())
        text = QString::fromLatin1(bytes);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return text;
}

QStringList splitLines(const QString &text)
{
    QString t = text;
    t.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    t.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    QStringList lines = t.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

ProfileFile ProfileFile::load(const QString &path)
{
    auto text = readTextFile(path);
    return text ? fromText(*text) : ProfileFile();
}

ProfileFile ProfileFile::fromText(const QString &text)
{
    ProfileFile p;
    QString section;
    bool inSection = false;
    for (const QString &raw : splitLines(text)) {
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char(';')))
            continue;
        if (line.startsWith(QLatin1Char('['))) {
            const int close = line.indexOf(QLatin1Char(']'));
            section = (close < 0 ? line.mid(1) : line.mid(1, close - 1)).trimmed();
            inSection = true;
            p.m_sections << section;
            continue;
        }
        if (!inSection)
            continue;
        const int eq = line.indexOf(QLatin1Char('='));
        if (eq < 0)
            continue;
        p.m_entries.push_back({section, line.left(eq).trimmed(), line.mid(eq + 1).trimmed()});
    }
    return p;
}

std::optional<QString> ProfileFile::value(const QString &section, const QString &key, int bufferSize) const
{
    const QString s = section.trimmed(), k = key.trimmed();
    for (const Entry &e : m_entries) {
        if (e.section.compare(s, Qt::CaseInsensitive) == 0 && e.key.compare(k, Qt::CaseInsensitive) == 0) {
            QString v = e.value;
            // The classic read strips one pair of enclosing quotes.
            if (v.size() >= 2 && ((v.startsWith(QLatin1Char('"')) && v.endsWith(QLatin1Char('"')))
                                  || (v.startsWith(QLatin1Char('\'')) && v.endsWith(QLatin1Char('\'')))))
                v = v.mid(1, v.size() - 2);
            if (bufferSize > 0 && v.size() > bufferSize - 1)
                v.truncate(bufferSize - 1);
            return v;
        }
    }
    return std::nullopt;
}

QString ProfileFile::read(const QString &section, const QString &key, int *count, int bufferSize) const
{
    const auto v = value(section, key, bufferSize);
    if (count)
        *count = v ? int(v->size()) : 0;
    return v.value_or(QString());
}

QStringList ProfileFile::sections() const { return m_sections; }

QStringList ProfileFile::keys(const QString &section) const
{
    QStringList out;
    for (const Entry &e : m_entries)
        if (e.section.compare(section, Qt::CaseInsensitive) == 0)
            out << e.key;
    return out;
}

Status writeLinesReplacing(const QString &path, const QStringList &lines)
{
    QByteArray out;
    for (const QString &l : lines) {
        out += l.toUtf8();
        out += '\n';
    }
    return writeFileReplacing(path, out, newFilePath(path));
}

QStringList splitFields(const QString &value, QChar separator)
{
    QStringList parts = value.split(separator);
    if (!parts.isEmpty() && parts.last().isEmpty())
        parts.removeLast();
    return parts;
}

QString joinFields(const QStringList &fields, QChar separator)
{
    QString out;
    for (const QString &f : fields) {
        out += f;
        out += separator;
    }
    return out;
}

}  // namespace mervola
