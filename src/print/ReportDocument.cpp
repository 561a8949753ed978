// Reading a report definition and painting its pages.
#include "print/ReportDocument.h"

#include "platform/Profile.h"
#include "platform/Sqlite.h"

#include <QFileInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QLocale>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace mervola
{

namespace
{

constexpr double kTwipsPerInch = 1440;
constexpr double kCellPad = 60;    // twips either side of a cell's text
constexpr double kMinColumn = 600; // narrowest column, twips

bool isTrue(const QString &v)
{
    return v.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0 || v == QLatin1String("-1");
}

} // namespace

ReportStyle ReportDefinition::style(const QString &name) const
{
    return styles.value(name.toLower(), ReportStyle{});
}

Result<ReportDefinition> parseReportDefinition(const QString &text)
{
    ReportDefinition d;
    QString section;
    QMap<int, ReportColumn> fields;
    QMap<int, QString> detail;
    for (const QString &raw : splitLines(text)) {
        const QString l = raw.trimmed();
        if (l.isEmpty())
            continue;
        if (l.startsWith(QLatin1Char('[')) && l.endsWith(QLatin1Char(']'))) {
            section = l.mid(1, l.size() - 2).trimmed();
            continue;
        }
        const qsizetype eq = raw.indexOf(QLatin1Char('='));
        if (eq < 0)
            continue;
        const QString key = raw.left(eq).trimmed();
        QString value = raw.mid(eq + 1);
        if (value.startsWith(QLatin1Char(' ')))
            value.remove(0, 1); // the blank of " = "; the footer keeps its own leading blank
        const QString s = section.toLower();
        if (s == QLatin1String("recordsource")) {
            if (key.compare(QLatin1String("DataBaseName"), Qt::CaseInsensitive) == 0)
                d.databaseName = value;
            else if (key.compare(QLatin1String("RecordSource"), Qt::CaseInsensitive) == 0)
                d.recordSource = value;
        } else if (s == QLatin1String("globalinfo")) {
            const QString k = key.toLower();
            if (k == QLatin1String("reporttitle"))
                d.title = value;
            else if (k == QLatin1String("header"))
                d.header = value;
            else if (k == QLatin1String("footer"))
                d.footer = value;
            else if (k == QLatin1String("top"))
                d.top = value.toInt();
            else if (k == QLatin1String("bottom"))
                d.bottom = value.toInt();
            else if (k == QLatin1String("left"))
                d.left = value.toInt();
            else if (k == QLatin1String("right"))
                d.right = value.toInt();
            else if (k == QLatin1String("wordwrap"))
                d.wordWrap = isTrue(value);
            else if (k == QLatin1String("maxheight"))
                d.maxHeight = value.toInt();
            else if (k == QLatin1String("orientation"))
                d.orientation =
                    value.trimmed() == QLatin1String("1") ? ReportOrientation::Landscape : ReportOrientation::Portrait;
        } else if (s.startsWith(QLatin1String("style "))) {
            ReportStyle &st = d.styles[s.mid(6).trimmed()];
            const QString k = key.toLower();
            if (k == QLatin1String("font"))
                st.font = value.trimmed();
            else if (k == QLatin1String("size"))
                st.size = std::clamp(value.toDouble(), 4.0, 72.0);
            else if (k == QLatin1String("bold"))
                st.bold = isTrue(value);
            else if (k == QLatin1String("italic"))
                st.italic = isTrue(value);
            else if (k == QLatin1String("backcolor")) {
                const long c = value.toLong(); // red + 256 green + 65536 blue
                st.back = QColor(int(c & 0xff), int((c >> 8) & 0xff), int((c >> 16) & 0xff));
            }
        } else if (s.startsWith(QLatin1String("field "))) {
            const int i = s.mid(6).toInt();
            if (key.compare(QLatin1String("ID"), Qt::CaseInsensitive) == 0)
                fields[i].field = value;
            else if (key.compare(QLatin1String("Title"), Qt::CaseInsensitive) == 0)
                fields[i].title = value;
        } else if (s == QLatin1String("detail") && key.startsWith(QLatin1String("Field"), Qt::CaseInsensitive)) {
            detail[key.mid(5).toInt()] = value;
        }
    }
    if (d.recordSource.isEmpty())
        return Error{QStringLiteral("Definizione della stampa non valida: manca la sorgente dei dati.")};
    d.fields = fields.values();
    d.detail = detail.values();
    return d;
}

Result<ReportDefinition> loadReportDefinition(const QString &path)
{
    auto text = readTextFile(path);
    if (!text)
        return Error{reporttext::kNoDefinition.arg(path)};
    return parseReportDefinition(*text);
}

QString substitutePlaceholders(const QString &text, const ReportContext &c)
{
    const QLocale it(QLocale::Italian, QLocale::Italy);
    QString t = text;
    t.replace(QLatin1String("<db>"), c.database)
        .replace(QLatin1String("<rs>"), c.recordSource)
        .replace(QLatin1String("<p>"), QString::number(c.page))
        .replace(QLatin1String("<n>"), QString::number(c.pageCount))
        .replace(QLatin1String("<tt>"), it.toString(c.when.time(), QStringLiteral("HH:mm")))
        .replace(QLatin1String("<ddd>"), it.toString(c.when.date(), QLocale::LongFormat));
    return t;
}

ReportDocument::ReportDocument(ReportDefinition definition, std::vector<QStringList> rows, QDateTime when)
    : m_def(std::move(definition)), m_rows(std::move(rows)), m_when(std::move(when))
{
}

Result<ReportDocument> ReportDocument::load(const AtlasHome &home)
{
    auto def = loadReportDefinition(reportDefinitionPath(home));
    if (!def)
        return def.error();
    // The definition names its database; a definition moved with its home
    // still finds the home's reference database.
    QString dbPath = def->databaseName;
    if (!QFileInfo::exists(dbPath))
        dbPath = home.referenceDb();
    auto db = SqliteDb::open(dbPath, SqliteDb::Mode::ReadOnly);
    if (!db)
        return db.error();
    std::vector<QStringList> rows;
    if (!def->detail.isEmpty()) {
        QStringList cols;
        for (const QString &f : def->detail)
            cols << sqlIdentifier(f);
        auto rs = db->query(QStringLiteral("SELECT ") + cols.join(QStringLiteral(", ")) + QStringLiteral(" FROM ") +
                            sqlIdentifier(def->recordSource));
        if (!rs)
            return rs.error();
        rows.reserve(rs->size());
        for (const auto &r : rs->rows) {
            QStringList values;
            for (const QVariant &v : r)
                values << (v.isNull() ? QStringLiteral("-") : v.toString());
            rows.push_back(values);
        }
    }
    return ReportDocument(std::move(*def), std::move(rows));
}

QSizeF ReportDocument::pageSizeTwips() const
{
    const double shortSide = std::min(m_paper.width(), m_paper.height());
    const double longSide = std::max(m_paper.width(), m_paper.height());
    return m_def.orientation == ReportOrientation::Landscape ? QSizeF(longSide, shortSide)
                                                             : QSizeF(shortSide, longSide);
}

QRectF ReportDocument::bodyRect() const
{
    const QSizeF p = pageSizeTwips();
    return QRectF(m_def.left, m_def.top, std::max(1.0, p.width() - m_def.left - m_def.right),
                  std::max(1.0, p.height() - m_def.top - m_def.bottom));
}

QFont ReportDocument::fontFor(const QString &styleName) const
{
    const ReportStyle s = m_def.style(styleName);
    QFont f(s.font);
    f.setPixelSize(std::max(1, int(std::lround(s.size * 20)))); // points -> twips
    f.setBold(s.bold);
    f.setItalic(s.italic);
    return f;
}

QStringList ReportDocument::titles() const
{
    QStringList t;
    for (int i = 0; i < m_def.detail.size(); ++i)
        t << (i < m_def.fields.size() ? m_def.fields[i].title : m_def.detail[i]);
    return t;
}

void ReportDocument::layout() const
{
    if (!m_pages.empty())
        return;
    const QRectF body = bodyRect();
    const QFontMetricsF detail(fontFor(QStringLiteral("Detail")));
    const QFontMetricsF head(fontFor(QStringLiteral("Header")));
    const QStringList heads = titles();
    const int n = int(heads.size());

    // Natural widths from the widest value; shrunk in proportion when the
    // table is wider than the page, long values then wrap.
    m_widths.assign(size_t(n), kMinColumn);
    for (int c = 0; c < n; ++c) {
        double w = head.horizontalAdvance(heads[c]);
        for (const QStringList &r : m_rows)
            if (c < r.size())
                w = std::max(w, detail.horizontalAdvance(r[c]));
        // A little slack: device fonts may set text slightly wider than measured.
        m_widths[size_t(c)] = std::max(kMinColumn, w * 1.05 + 2 * kCellPad);
    }
    double total = 0;
    for (double w : m_widths)
        total += w;
    if (total > body.width())
        for (double &w : m_widths)
            w = std::max(kMinColumn / 2, w * body.width() / total);

    auto cellHeight = [&](const QFontMetricsF &fm, const QString &text, double width) {
        const int flags = m_def.wordWrap ? int(Qt::TextWordWrap) : 0;
        const QRectF r = fm.boundingRect(QRectF(0, 0, std::max(1.0, width - 2 * kCellPad), 1e7), flags, text);
        return std::min<double>(m_def.maxHeight, std::max(fm.height(), r.height()) + kCellPad);
    };
    m_titleHeight = head.height() + kCellPad;
    for (int c = 0; c < n; ++c)
        m_titleHeight = std::max(m_titleHeight, cellHeight(head, heads[c], m_widths[size_t(c)]));
    m_heights.clear();
    for (const QStringList &r : m_rows) {
        double h = detail.height() + kCellPad;
        for (int c = 0; c < n && c < r.size(); ++c)
            h = std::max(h, cellHeight(detail, r[c], m_widths[size_t(c)]));
        m_heights.push_back(h);
    }

    // The first page also carries the report title.
    const double titleBand = QFontMetricsF(fontFor(QStringLiteral("Title"))).height() * 1.5;
    Page page;
    double used = titleBand + m_titleHeight;
    for (int i = 0; i < int(m_rows.size()); ++i) {
        const double h = m_heights[size_t(i)];
        if (page.count > 0 && used + h > body.height()) {
            m_pages.push_back(page);
            page = Page{i, 0};
            used = m_titleHeight;
        }
        used += h;
        ++page.count;
    }
    m_pages.push_back(page);
}

int ReportDocument::pageCount() const
{
    layout();
    return int(m_pages.size());
}

void ReportDocument::paintPage(QPainter &p, int pageIndex) const
{
    layout();
    if (pageIndex < 0 || pageIndex >= int(m_pages.size()))
        return;
    const Page &page = m_pages[size_t(pageIndex)];
    const QRectF body = bodyRect();
    const QSizeF paper = pageSizeTwips();
    ReportContext ctx{QFileInfo(m_def.databaseName).fileName(), m_def.recordSource, pageIndex + 1, int(m_pages.size()),
                      m_when};
    p.save();
    p.setPen(Qt::black);

    // Header and footer: "left|centre|right" in the top and bottom margins.
    auto band = [&](const QString &text, const QFont &font, double y) {
        const QStringList parts = substitutePlaceholders(text, ctx).split(QLatin1Char('|'));
        p.setFont(font);
        const QRectF r(body.left(), y, body.width(), QFontMetricsF(font).height());
        const Qt::Alignment al[3] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
        for (int i = 0; i < 3 && i < parts.size(); ++i)
            p.drawText(r, int(al[i] | Qt::AlignVCenter), parts[i]);
    };
    const QFont footFont = fontFor(QStringLiteral("Footer"));
    const QFont pageHeadFont = fontFor(QStringLiteral("Detail"));
    band(m_def.header, pageHeadFont, std::max(0.0, body.top() - 2 * QFontMetricsF(pageHeadFont).height()));
    band(m_def.footer, footFont,
         std::min(paper.height() - QFontMetricsF(footFont).height(), body.bottom() + QFontMetricsF(footFont).height()));

    double y = body.top();
    if (pageIndex == 0) {
        const QFont titleFont = fontFor(QStringLiteral("Title"));
        p.setFont(titleFont);
        const double h = QFontMetricsF(titleFont).height() * 1.5;
        p.drawText(QRectF(body.left(), y, body.width(), h), Qt::AlignLeft | Qt::AlignTop, m_def.title);
        y += h;
    }

    const int wrap = m_def.wordWrap ? int(Qt::TextWordWrap) : 0;
    auto row = [&](const QStringList &cells, double h, const ReportStyle &style, const QFont &font) {
        double x = body.left();
        const double width = std::accumulate(m_widths.begin(), m_widths.end(), 0.0);
        if (style.back.isValid())
            p.fillRect(QRectF(x, y, width, h), style.back);
        p.setFont(font);
        for (size_t c = 0; c < m_widths.size(); ++c) {
            const QRectF cell(x + kCellPad, y + kCellPad / 2, m_widths[c] - 2 * kCellPad, h - kCellPad);
            if (int(c) < cells.size()) {
                p.save();
                p.setClipRect(cell);
                p.drawText(cell, int(Qt::AlignLeft | Qt::AlignTop) | wrap, cells[int(c)]);
                p.restore();
            }
            x += m_widths[c];
        }
        p.setPen(QPen(QColor(160, 160, 160), 10));
        p.drawLine(QPointF(body.left(), y + h), QPointF(body.left() + width, y + h));
        p.setPen(Qt::black);
        y += h;
    };
    if (!m_widths.empty()) {
        row(titles(), m_titleHeight, m_def.style(QStringLiteral("Header")), fontFor(QStringLiteral("Header")));
        const ReportStyle plain = m_def.style(QStringLiteral("Detail"));
        const QFont detail = fontFor(QStringLiteral("Detail"));
        for (int i = page.first; i < page.first + page.count; ++i)
            row(m_rows[size_t(i)], m_heights[size_t(i)], plain, detail);
    }
    p.restore();
}

QImage ReportDocument::pageImage(int page, double dpi) const
{
    const QSizeF twips = pageSizeTwips();
    const double k = dpi / kTwipsPerInch;
    QImage img(QSize(int(std::ceil(twips.width() * k)), int(std::ceil(twips.height() * k))), QImage::Format_RGB32);
    img.fill(Qt::white);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    p.scale(k, k);
    paintPage(p, page);
    return img;
}

Status ReportDocument::print(QPagedPaintDevice &device) const
{
    device.setPageOrientation(m_def.orientation == ReportOrientation::Landscape ? QPageLayout::Landscape
                                                                                : QPageLayout::Portrait);
    device.setPageMargins(QMarginsF(0, 0, 0, 0));
    // The page in twips as the device has it (a printer may use another paper).
    const QRectF full = device.pageLayout().fullRect(QPageLayout::Point);
    ReportDocument doc = *this;
    doc.setPaperSize(QSizeF(full.width() * 20, full.height() * 20));
    QPainter p;
    if (!p.begin(&device))
        return Error{QStringLiteral("Impossibile avviare la stampa.")};
    // The painter's origin is the printable area's; the page starts at the
    // paper's edge, and one unit is one twip.
    const QRect paint = device.pageLayout().paintRectPixels(device.logicalDpiX());
    const QRect fullPx = device.pageLayout().fullRectPixels(device.logicalDpiX());
    const double k = device.logicalDpiX() / kTwipsPerInch;
    for (int i = 0; i < doc.pageCount(); ++i) {
        if (i > 0 && !device.newPage()) {
            p.end();
            return Error{QStringLiteral("Impossibile avviare la stampa.")};
        }
        p.save();
        p.translate(fullPx.left() - paint.left(), fullPx.top() - paint.top());
        p.scale(k, k);
        doc.paintPage(p, i);
        p.restore();
    }
    p.end();
    return {};
}

Status ReportDocument::writePdf(const QString &path) const
{
    QPdfWriter writer(path);
    writer.setResolution(600);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setTitle(m_def.title);
    writer.setCreator(QStringLiteral("Mervola"));
    if (Status s = print(writer); !s)
        return s;
    if (!QFileInfo::exists(path))
        return Error{reporttext::kWriteFailed.arg(path)};
    return {};
}

} // namespace mervola
