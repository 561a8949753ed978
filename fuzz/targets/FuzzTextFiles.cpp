// Targets of the text files the program reads: settings, projects, report
// definitions and text join sources.
#include "FuzzTargets.h"

#include "platform/Profile.h"
#include "print/ReportDocument.h"
#include "project/JoinSource.h"
#include "project/ProjectFile.h"
#include "project/ThemeSettings.h"

namespace mervola::fuzz
{

int fuzzSettings(const std::uint8_t *data, std::size_t size)
{
    const QString path = scratchFile(QStringLiteral("tema.ini"), data, size);
    const ProfileFile profile = ProfileFile::load(path);
    for (const QString &section : profile.sections()) {
        ThemeSettings theme = readThemeSettings(profile, section);
        (void)formatClassItems(theme.classes);
        for (const QString &key : profile.keys(section)) {
            int count = 0;
            (void)profile.read(section, key, &count, 16);
        }
    }
    return 0;
}

int fuzzProject(const std::uint8_t *data, std::size_t size)
{
    const QString path = scratchFile(QStringLiteral("progetto.rlx"), data, size);
    auto streamed = readProjectFile(path);
    if (auto text = readTextFile(path))
        (void)parseProject(text.value());
    if (streamed) {
        (void)formatExtentLine(streamed->extent);
        for (const auto &theme : streamed->themes)
            (void)readThemeSettings(ProfileFile::fromText(theme.lines.join(QLatin1Char('\n'))), theme.name);
    }
    return 0;
}

int fuzzReport(const std::uint8_t *data, std::size_t size)
{
    const QString path = scratchFile(QStringLiteral("report.vrd"), data, size);
    auto definition = loadReportDefinition(path);
    if (!definition)
        return 0;
    ReportContext context{QStringLiteral("comuni"), QStringLiteral("select * from comuni"), 2, 3, {}};
    for (const QString &text : {definition->title, definition->header, definition->footer})
        (void)substitutePlaceholders(text, context);
    for (const ReportColumn &column : definition->fields)
        (void)substitutePlaceholders(column.title, context);
    for (const QString &name : definition->styles.keys())
        (void)definition->style(name);
    return 0;
}

int fuzzTextSource(const std::uint8_t *data, std::size_t size)
{
    const QString path = scratchFile(QStringLiteral("origine.txt"), data, size);
    auto source = readTextSource(path);
    if (source)
        (void)validateDbf(source->table);
    return 0;
}

} // namespace mervola::fuzz
