#pragma once
// The pristine state of the atlas home: the default settings file of every
// region theme under originali/, the pristine theme tables copied back into
// italia/, and the pristine settings copied over the working ones in supporto/.

#include "platform/AtlasHome.h"
#include "platform/Result.h"

#include <QStringList>

namespace mervola {

// Lines of the default settings file of a region's mountain-community
// (`mountain`) or municipality theme; `region` is 1..20.
QStringList pristineThemeLines(const QString &home, int region, bool mountain);

// When originali/ holds no *.ini, writes the 39 default files (cmont_NN for
// every region but 19, comu_NN for all 20). Returns how many were written.
Result<int> writePristineSettingsIfMissing(const AtlasHome &home);

// Copies a file over another without ever leaving the target half-written:
// copy to "<target>.new", delete the target, rename.
Status copyFileReplacing(const QString &source, const QString &target);

// Restores one theme's table: originali/<name>.dbf copied over italia/<name>.dbf
// (names matched without case). A name with no pristine table is left alone.
Status restoreThemeTable(const AtlasHome &home, const QString &name);

// Restores the table of every file in originali/ (each file's name without
// its four-character extension, once per name).
Status restoreAllThemeTables(const AtlasHome &home);

// Copies every originali/*.ini over supporto/ (overwriting).
Status copyPristineSettings(const AtlasHome &home);

// Restores the mountain-community table `target` from the stored table
// `stored`: the pristine copy in originali/ when there is one, else the table
// in italia/. Fails when neither exists.
Status restoreCommunityTable(const AtlasHome &home, const QString &stored, const QString &target);

}  // namespace mervola
