#pragma once
// frmLabelProperties: the label window of the active theme. It takes the
// field list and the current values in and gives the chosen values out
// (LabelForm); OK hands them to an apply function (SetLabelProperties) and
// closes only when that succeeds. The window itself changes no other state.

#include "app/AppState.h"
#include "app/TemaLabel.h"
#include "platform/AtlasHome.h"

#include <QDialog>
#include <functional>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace mervola {

namespace LabelWindowText {
inline const QString kCaption = QStringLiteral("Proprietà etichette");
inline const QString kField = QStringLiteral("Campo:");
inline const QString kFontButton = QStringLiteral("Font...");
inline const QString kRotation = QStringLiteral("Rotazione (gradi):");
inline const QString kHeight = QStringLiteral("Altezza:");
inline const QString kColor = QStringLiteral("Colore...");
}  // namespace LabelWindowText

struct LabelDialogInput {
    QString themeName;
    QString title;  // the theme as the legend names it; themeName when empty
    QList<LabelFieldEntry> entries;
    LabelForm form;
    // The families offered by the font button; empty: the installed ones.
    std::optional<QStringList> fontFamilies;
};

class FrmLabelProperties : public QDialog {
    Q_OBJECT
public:
    using ApplyFn = std::function<bool(const LabelForm &)>;

    explicit FrmLabelProperties(const LabelDialogInput &input, QWidget *parent = nullptr);

    LabelForm form() const;
    // Run by OK; the window closes when it returns true. Unset: OK closes.
    void setApply(ApplyFn apply) { m_apply = std::move(apply); }
    void setColor(std::int32_t color);
    void setFontName(const QString &font);

private:
    void cmdOk_Click();
    void cmdFont_Click();
    void cmdColor_Click();

    std::optional<QStringList> m_families;
    ApplyFn m_apply;
    QString m_font;
    std::int32_t m_color = 0;
    QComboBox *m_field = nullptr;
    QLabel *m_fontName = nullptr;
    QLineEdit *m_rotation = nullptr;
    QLineEdit *m_height = nullptr;
    QPushButton *m_colorButton = nullptr;
};

// The input of the window for the theme's layer: its field list and its
// current label values (Arial, 0, 8, black when it has no labels).
LabelDialogInput labelDialogInput(const map::MapLayer &layer, const StructureTable &structure,
                                  const FieldDescriber &describe = {});

// The `label` command for the active theme: opens the window and, on OK,
// applies the labels to the layer and writes them to supporto/<theme>.ini.
// Returns true when labels were applied (the caller then redraws the map and
// enables `nolabel`). A theme with no layer on the map does nothing.
// `shownName` is the theme's name in the legend, which titles the window.
bool runLabelCommand(QWidget *parent, map::MapModel &model, const AtlasHome &home, const AppState &state,
                     const QString &themeName, const QString &shownName = {});

}  // namespace mervola
