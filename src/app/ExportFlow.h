#pragma once
// The "Esporta mappa" command without widgets: ask for a file name through a
// callback, confirm before replacing an existing file, then write the map
// picture in the format of the chosen extension.
//
// The main window calls
//   runExportCommand(model, widget->extent(), widget->size(),
//                    [this](const QString &title, const QString &filter, QString *selected) {
//                        return QFileDialog::getSaveFileName(this, title, QString(), filter, selected,
//                                                            QFileDialog::DontConfirmOverwrite);
//                    });
// (the dialog must not ask its own overwrite question: this flow asks it).
// and shows a returned error in a critical box (style 16).

#include "platform/Result.h"
#include "map/MapModel.h"

#include <QSize>
#include <QString>
#include <functional>

namespace mervola {

namespace ExportTexts {
inline const QString kTitle = QStringLiteral("Esporta mappa");
// The common-dialog filter of the two classic formats, "|"-separated pairs
// of description and pattern; the second description has no blank before
// its parenthesis.
inline const QString kClassicFilter =
    QStringLiteral("Formato bmp (*.bmp)|*.bmp|Formato emf") + QStringLiteral("(*.emf)|*.emf");
// The further formats offered after those two.
inline const QString kExtraFilter =
    QStringLiteral("Formato png (*.png)|*.png|Formato svg (*.svg)|*.svg|Formato pdf (*.pdf)|*.pdf");
}  // namespace ExportTexts

// The whole "|"-separated filter offered by the command.
QString exportFilter();

// Turns a common-dialog filter "Description|pattern|Description|pattern"
// into Qt's "Description (pattern);;..." form. A description that already
// shows its pattern in parentheses is kept as it is; otherwise the pattern
// is appended. Several patterns separated by ";" become blank-separated.
QString toQtFileFilter(const QString &commonDialogFilter);

// "Il file <name> è già esistente. Sostituire il file?"
QString overwriteQuestion(const QString &fileName);

// Receives the dialog title and the Qt-form filter; returns the chosen path,
// empty when the user cancels, and sets `selectedFilter` to the filter the
// user left chosen.
using ChooseSaveFile = std::function<QString(QString title, QString filter, QString *selectedFilter)>;

// The extension a Qt-form filter entry names ("Formato emf(*.emf)" gives
// ".emf"); empty when it names none.
QString filterExtension(const QString &filterEntry);

// Runs the command: chooser, overwrite question (OK/Cancel, style 49;
// Cancel ends without writing), export of `extent` at `pixels`. A name
// without extension takes the one of the chosen filter (".bmp", the first
// format of the list, when none is known); a name with an extension we do
// not write is refused before any question. Returns the error, if any;
// cancelling is not an error.
Status runExportCommand(const map::MapModel &model, const map::MapRect &extent, QSize pixels,
                        const ChooseSaveFile &chooseFile);

}  // namespace mervola
