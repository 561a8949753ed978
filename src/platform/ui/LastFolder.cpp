#include "platform/ui/LastFolder.h"

#include <QFileInfo>

namespace mervola {

namespace {
QString &folder()
{
    static QString last;
    return last;
}
}  // namespace

QString lastUsedFolder(const QString &fallback) { return folder().isEmpty() ? fallback : folder(); }

void rememberFolderOf(const QString &filePath)
{
    if (!filePath.isEmpty())
        folder() = QFileInfo(filePath).absolutePath();
}

void forgetLastFolder() { folder().clear(); }

}  // namespace mervola
