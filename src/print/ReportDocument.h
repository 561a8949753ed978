#pragma once
// The report renderer: reads a .vrd report definition and the rows of its
// record source, lays them out on pages (column titles on every page, long
// values wrapped, header and footer with their placeholders substituted)
// and paints the pages on any QPainter: preview images, a printer, PDF.

#include "platform/AtlasHome.h"
#include "platform/Result.h"
#include "print/TableReport.h"

#include <QColor>
#include <QDateTime>
#include <QFont>
#include <QMap>
#include <QSizeF>
#include <memory>

class QPainter;
class QPagedPaintDevice;

namespace mervola
{

class GlyphSetter;

struct ReportStyle {
    QString font = QStringLiteral("Arial");
    double size = 9;
    bool bold = false;
    bool italic = false;
    QColor back; // invalid = no fill
};

struct ReportDefinition {
    QString databaseName;
    QString recordSource;
    QString title;
    QString header; // "left|centre|right"
    QString footer;
    int top = 1440, bottom = 1440, left = 1440, right = 720; // twips
    bool wordWrap = true;
    int maxHeight = 2880; // tallest row, twips
    ReportOrientation orientation = ReportOrientation::Portrait;
    QList<ReportColumn> fields;        // [Field i]: ID and Title
    QStringList detail;                // [Detail]: Field1 ... FieldN
    QMap<QString, ReportStyle> styles; // "[Style X]" sections by X, lower case

    ReportStyle style(const QString &name) const;
};

Result<ReportDefinition> parseReportDefinition(const QString &text);
Result<ReportDefinition> loadReportDefinition(const QString &path);

// What the placeholders stand for on one page.
struct ReportContext {
    QString database;     // <db>
    QString recordSource; // <rs>
    int page = 1;         // <p>
    int pageCount = 1;    // <n>
    QDateTime when;       // <tt> time, <ddd> long date
};
QString substitutePlaceholders(const QString &text, const ReportContext &context);

class ReportDocument
{
public:
    ReportDocument() = default;
    ReportDocument(ReportDefinition definition, std::vector<QStringList> rows,
                   QDateTime when = QDateTime::currentDateTime());

    // The definition dati/TempRpt.vrd of a home and the rows of its record source.
    static Result<ReportDocument> load(const AtlasHome &home);

    const ReportDefinition &definition() const { return m_def; }
    const std::vector<QStringList> &rows() const { return m_rows; }

    // Page size in twips (A4 unless set), turned by the orientation.
    void setPaperSize(QSizeF twips)
    {
        m_paper = twips;
        m_pages.clear();
    }
    QSizeF pageSizeTwips() const;
    // Turns the pages; the text widths already measured stay valid.
    void setOrientation(ReportOrientation orientation)
    {
        m_def.orientation = orientation;
        m_pages.clear();
    }

    int pageCount() const;
    // Columns never cut a value: when the table is wider than the page the
    // text gets smaller (down to two thirds), and what still does not fit
    // goes on further bands of columns, each repeating the first column.
    // The rows of one stretch of the table are printed band after band.
    int bandCount() const;
    double fontScale() const;
    // The columns (indexes into the detail fields) of a band.
    std::vector<int> bandColumns(int band) const;

    // Paints page `page` (0-based) with the painter's unit = one twip.
    void paintPage(QPainter &painter, int page) const;
    // A page as an image at `dpi` (for the preview).
    QImage pageImage(int page, double dpi) const;
    // Paints every page on a printer or PDF writer (page size and
    // orientation are set on the device from the definition). `progress`
    // hears of every page and may stop the work (reporttext::kCancelled).
    Status print(QPagedPaintDevice &device, const ReportProgress &progress = {}) const;
    // A stopped or failed PDF leaves no file behind.
    Status writePdf(const QString &path, const ReportProgress &progress = {}) const;

private:
    struct Page {
        int first = 0;
        int count = 0;
    };
    void layout() const;
    void measure() const;
    QFont fontFor(const QString &styleName) const;
    QRectF bodyRect() const;
    QStringList titles() const;

    ReportDefinition m_def;
    std::vector<QStringList> m_rows;
    QDateTime m_when;
    QSizeF m_paper{11906, 16838}; // A4
    mutable std::vector<Page> m_pages;       // stretches of rows
    mutable std::vector<std::vector<int>> m_bands;
    mutable double m_scale = 1;              // of the header and detail fonts
    mutable std::vector<double> m_widths;    // column widths, twips
    mutable std::vector<double> m_heights;   // row heights, twips
    mutable double m_titleHeight = 0;
    // Measured once at full size: text width of every cell, row by row.
    mutable std::vector<float> m_cellWidths;
    mutable std::vector<double> m_naturalWidths; // per column, text only
    // The cells' text set at the laid-out size, title row and detail rows.
    mutable std::shared_ptr<GlyphSetter> m_headGlyphs, m_detailGlyphs;
};

// Turns the report of a home to landscape when its columns need fewer
// bands there than on a portrait page.
Status turnWideReport(const AtlasHome &home);

} // namespace mervola
