#pragma once
// A paint device that records what a QPainter draws as a vector Enhanced
// Metafile: filled paths become POLYPOLYGON records (alternate or winding
// fill), strokes POLYLINE/POLYPOLYLINE records, text EXTTEXTOUTW records
// with a created font. Hatched brushes and wide dashed pens are written as
// the lines they draw, so that every reader shows them alike. Images,
// pixmaps, clipping and partial transparency are not recorded.
//
//   EmfDevice device(QSize(800, 600));
//   QPainter p(&device);
//   ... paint as on any device ...
//   p.end();
//   QByteArray bytes = device.data();
//
// The device measures `pixels` at `dpi` dots per inch; the metafile maps
// logical units of 1/16 pixel onto them so that vertices keep sub-pixel
// precision.

#include <QByteArray>
#include <QPaintDevice>
#include <QSize>
#include <QString>
#include <memory>

namespace mervola::emf {

class EmfPaintEngine;

class EmfDevice : public QPaintDevice {
public:
    explicit EmfDevice(QSize pixels, double dpi = 96, const QString &description = QStringLiteral("Mervola\nMappa"));
    ~EmfDevice() override;
    EmfDevice(const EmfDevice &) = delete;
    EmfDevice &operator=(const EmfDevice &) = delete;

    QPaintEngine *paintEngine() const override;
    QSize size() const { return m_pixels; }
    double dpi() const { return m_dpi; }
    // The finished metafile; empty until a painter has ended on the device.
    QByteArray data() const { return m_data; }

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    friend class EmfPaintEngine;
    QSize m_pixels;
    double m_dpi;
    QString m_description;
    QByteArray m_data;
    std::unique_ptr<EmfPaintEngine> m_engine;
};

}  // namespace mervola::emf
