#pragma once
// A histogram of a numeric column with the class limits drawn over it; each
// bar takes the colour of the class its middle falls in.

#include "classify/ClassRange.h"

#include <QWidget>
#include <vector>

namespace mervola::classify {

class HistogramWidget : public QWidget {
    Q_OBJECT
public:
    explicit HistogramWidget(QWidget *parent = nullptr);
    // Non-null values in any order; classes give the break lines and colours.
    void setData(std::vector<double> values, const std::vector<ClassRange> &classes, bool uniqueValues);
    QSize sizeHint() const override { return {360, 160}; }
    QSize minimumSizeHint() const override { return {200, 100}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    std::vector<double> m_values;  // sorted
    std::vector<ClassRange> m_classes;
    bool m_unique = false;
};

}  // namespace mervola::classify
