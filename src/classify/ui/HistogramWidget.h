#pragma once
// A histogram of a numeric column with the class limits drawn over it. For
// classes the bars never cross a class limit, so each bar has the colour of
// exactly one class; bar heights are densities (elements per unit of the
// value axis), so narrow bars beside a limit are not exaggerated.

#include "classify/HistogramBins.h"

#include <QWidget>
#include <vector>

namespace mervola::classify {

class HistogramWidget : public QWidget {
    Q_OBJECT
public:
    explicit HistogramWidget(QWidget *parent = nullptr);
    // Non-null values in any order; classes give the break lines and colours.
    void setData(std::vector<double> values, const std::vector<ClassRange> &classes, bool uniqueValues);
    bool logarithmicPossible() const { return logarithmicAxisUseful(m_values); }
    bool logarithmic() const { return m_log; }
    void setLogarithmic(bool on);
    // The bars as drawn (empty for unique values).
    std::vector<HistogramBin> bars() const;
    QSize sizeHint() const override { return {360, 160}; }
    QSize minimumSizeHint() const override { return {200, 100}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void paintUnique(QPainter &p, const QRectF &plot);
    std::vector<double> m_values;  // sorted
    std::vector<ClassRange> m_classes;
    bool m_unique = false;
    bool m_log = false;
};

}  // namespace mervola::classify
