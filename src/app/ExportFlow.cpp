#include "app/ExportFlow.h"

#include "platform/Messages.h"
#include "map/MapExport.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace mervola {

QString exportFilter() { return ExportTexts::kClassicFilter + QLatin1Char('|') + ExportTexts::kExtraFilter; }

QString toQtFileFilter(const QString &commonDialogFilter)
{
    const QStringList parts = commonDialogFilter.split(QLatin1Char('|'));
    QStringList entries;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        const QString description = parts.at(i).trimmed();
        QString patterns = parts.at(i + 1).trimmed();
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        patterns = patterns.simplified();
        if (description.isEmpty() && patterns.isEmpty())
            continue;
        // Qt reads the patterns from the last parenthesis of an entry.
        if (description.endsWith(QLatin1Char('(') + patterns + QLatin1Char(')')))
            entries << description;
        else if (description.isEmpty())
            entries << patterns;
        else
            entries << description + QStringLiteral(" (") + patterns + QLatin1Char(')');
    }
    return entries.join(QStringLiteral(";;"));
}

QString filterExtension(const QString &filterEntry)
{
    static const QRegularExpression pattern(QStringLiteral("\\(\\*(\\.[A-Za-z0-9]+)\\)\\s*$"));
    const QRegularExpressionMatch m = pattern.match(filterEntry);
    return m.hasMatch() ? m.captured(1).toLower() : QString();
}

QString overwriteQuestion(const QString &fileName)
{
    return QStringLiteral("Il file ") + fileName + QStringLiteral(" è già esistente. Sostituire il file?");
}

Status runExportCommand(const map::MapModel &model, const map::MapRect &extent, QSize pixels,
                        const ChooseSaveFile &chooseFile)
{
    if (!chooseFile)
        return {};
    QString selected;
    QString path = chooseFile(ExportTexts::kTitle, toQtFileFilter(exportFilter()), &selected);
    if (path.isEmpty())
        return {};
    if (QFileInfo(path).suffix().isEmpty()) {
        const QString ext = filterExtension(selected);
        path += ext.isEmpty() ? QStringLiteral(".bmp") : ext;
    }
    if (!map::exportFormatFor(path))
        return Status::fail(map::unsupportedFormatMessage(path));
    if (QFileInfo::exists(path) &&
        showMessage(MsgStyle::Exclamation | MsgStyle::OkCancel, overwriteQuestion(path)) != MsgAnswer::Ok)
        return {};
    return map::exportMap(model, extent, pixels, path);
}

}  // namespace mervola
