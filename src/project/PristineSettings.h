#pragma once
// The pristine state of the atlas home: the default settings file of every
// region theme under originali/, the pristine theme tables copied back into
// italia/, and the pristine settings copied over the working ones in supporto/.

#include "platform/AtlasHome.h"
#include "platform/FileReplace.h"
#include "platform/Result.h"

#include <QStringList>

namespace mervola {

namespace PristineText {
// "%1" the pristine table, "%2" what is wrong with it.
inline const QString kDamagedPristine =
    QStringLiteral("La copia originale %1 è danneggiata e non è stata usata. %2");
// "%1" the working table.
inline const QString kRepaired =
    QStringLiteral("La tabella %1 era danneggiata ed è stata ripristinata dalla copia originale.");
}  // namespace PristineText

// Error code of a failure for want of the originali/ folder itself.
constexpr int kMissingFolder = 9101;

// Lines of the default settings file of a region's mountain-community
// (`mountain`) or municipality theme; `region` is 1..20.
QStringList pristineThemeLines(const QString &home, int region, bool mountain);

// When originali/ holds no *.ini, writes the 39 default files (cmont_NN for
// every region but 19, comu_NN for all 20). Returns how many were written.
Result<int> writePristineSettingsIfMissing(const AtlasHome &home);

// Restores one theme's table: originali/<name>.dbf copied over italia/<name>.dbf
// (names matched without case). A name with no pristine table is left alone.
Status restoreThemeTable(const AtlasHome &home, const QString &name);

// Copies originali/<name>.dbf over italia/<name>.dbf even when the working
// table looks untouched (it was found damaged). Fails when there is no
// whole pristine copy.
Status repairThemeTable(const AtlasHome &home, const QString &name);

// Restores the table of every file in originali/ (each file's name without
// its four-character extension, once per name). Goes on past a table that
// cannot be restored and reports them all; a damaged pristine copy is
// reported and leaves the working table as it is.
Status restoreAllThemeTables(const AtlasHome &home);

// Copies every originali/*.ini over supporto/ (overwriting); goes on past a
// file that cannot be copied and reports them all.
Status copyPristineSettings(const AtlasHome &home);

// The file a user has to mend when the working settings file `working` is
// faulty: its pristine copy in originali/ when the working file is that copy
// unchanged (it is copied again at every start), otherwise `working` itself.
QString settingsFileToMend(const AtlasHome &home, const QString &working);

// Removes from supporto/ the settings files of themes that earlier projects
// brought (no pristine copy in originali/; stili.ini stays) and temporary
// ".new" files left by an interrupted write.
void removeStraySettings(const AtlasHome &home);

// Restores the mountain-community table `target` from the stored table
// `stored`: the pristine copy in originali/ when there is one, else the table
// in italia/. Fails when neither exists.
Status restoreCommunityTable(const AtlasHome &home, const QString &stored, const QString &target);

}  // namespace mervola
