#include "app/ProjectView.h"

#include "app/MapModelHost.h"
#include "app/ThemeStyle.h"
#include "platform/Profile.h"
#include "project/ProjectFile.h"

#include <QDir>
#include <QFileInfo>

namespace mervola {

Status loadProjectView(const QString &projectPath, const AtlasHome &home, map::MapModel &model)
{
    if (!hasProjectExtension(projectPath))
        return Status::fail(ProjectText::kBadExtension);
    auto content = readProjectFile(projectPath);
    if (!content)
        return content.error();
    const bool isDefault = projectPath.endsWith(QLatin1String("default.rlx"), Qt::CaseInsensitive);
    for (const auto &section : content->themes) {
        const ThemeSettings s = readThemeSettings(ProfileFile::fromText(section.lines.join(QLatin1Char('\n'))),
                                                  section.name);
        QString folder = isDefault || s.workspace.isEmpty() ? home.italia() : s.workspace;
        folder.replace(QLatin1Char('\\'), QLatin1Char('/'));
        const QString shp = resolveCaseInsensitive(QDir::cleanPath(folder), s.shapefile);
        if (s.shapefile.isEmpty() || !QFileInfo::exists(shp))
            return Status::fail(QStringLiteral("Shapefile non trovato: %1").arg(s.shapefile));
        auto layer = model.addShapefile(shp, s.layerName.isEmpty() ? section.name : s.layerName);
        if (!layer)
            return layer.error();
        applyThemeSettings(**layer, s);
    }
    if (model.layerCount() == 0)
        return Status::fail(QStringLiteral("Il progetto non contiene temi."));
    model.setExtent(toMapRect(content->extent));
    return {};
}

}  // namespace mervola
