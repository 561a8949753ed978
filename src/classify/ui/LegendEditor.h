#pragma once
// The legend editor of one theme: visibility; fill colour, outline colour and
// outline flag of an unclassified theme; class colours and labels of a
// classified one. Value in, value out.

#include "classify/ClassRange.h"

#include <QDialog>
#include <cstdint>

class QCheckBox;
class QPushButton;
class QTableWidget;

namespace mervola::classify {

struct LegendEntry {
    QString theme;  // alias shown in the legend
    bool visible = true;
    std::int32_t fillColor = 0;
    std::int32_t outlineColor = 0;
    bool outline = true;
    Classification classification;  // empty = simple symbol
};

class LegendEditor : public QDialog {
    Q_OBJECT
public:
    explicit LegendEditor(const LegendEntry &entry, QWidget *parent = nullptr);
    LegendEntry entry() const;

private:
    void paintButton(QPushButton *button, std::int32_t color);
    void pickColor(std::int32_t *color, QPushButton *button);
    void fillGrid();

    LegendEntry m_entry;
    QCheckBox *m_visible = nullptr;
    QCheckBox *m_outline = nullptr;
    QPushButton *m_fill = nullptr;
    QPushButton *m_outlineColor = nullptr;
    QTableWidget *m_grid = nullptr;
};

}  // namespace mervola::classify
