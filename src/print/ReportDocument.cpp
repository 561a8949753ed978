// Reading a report definition and painting its pages.
#include "print/ReportDocument.h"

#include "platform/Profile.h"
#include "platform/Sqlite.h"
#include "print/GlyphSetter.h"

#include <QFileInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QLocale>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>

#include <QFile>

#include <algorithm>
#include <array>
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
    const bool table = styleName.compare(QLatin1String("Detail"), Qt::CaseInsensitive) == 0 ||
                       styleName.compare(QLatin1String("Header"), Qt::CaseInsensitive) == 0;
    QFont f(s.font);
    f.setPixelSize(std::max(1, int(std::lround(s.size * 20 * (table ? m_scale : 1.0))))); // points -> twips
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

namespace
{

constexpr double kMinScale = 2.0 / 3; // 9-point text down to 6 points
constexpr double kTextCap = 2880;     // a text column wider than 2 inches wraps at blanks
constexpr double kTitleCap = 1800;    // a column title wider than 1.25 inches wraps

// Widths of plain ASCII text from a table of character advances: the
// values of a large table are measured without laying out each one.
class TextMeasure
{
public:
    explicit TextMeasure(const QFont &font) : m_fm(font)
    {
        for (int c = 32; c < 127; ++c)
            m_ascii[size_t(c)] = m_fm.horizontalAdvance(QChar(c));
    }
    double width(const QString &text) const
    {
        double w = 0;
        for (const QChar ch : text) {
            const ushort u = ch.unicode();
            if (u < 32 || u >= 127)
                return m_fm.horizontalAdvance(text);
            w += m_ascii[u];
        }
        return w;
    }
    double longestWord(const QString &text) const
    {
        double best = 0;
        for (const QStringView word : QStringView(text).split(QLatin1Char(' '), Qt::SkipEmptyParts))
            best = std::max(best, width(word.toString()));
        return best;
    }

private:
    QFontMetricsF m_fm;
    std::array<double, 128> m_ascii{};
};

} // namespace

// Text widths of every title and cell at full size, and each column's
// natural width: its widest number or title word, its text up to the cap.
void ReportDocument::measure() const
{
    if (!m_naturalWidths.empty() || m_def.detail.isEmpty())
        return;
    const QStringList heads = titles();
    const size_t n = size_t(heads.size());
    const double saved = m_scale;
    m_scale = 1;
    const TextMeasure detail(fontFor(QStringLiteral("Detail")));
    const TextMeasure head(fontFor(QStringLiteral("Header")));
    m_scale = saved;
    m_naturalWidths.assign(n, 0);
    m_cellWidths.assign(n * m_rows.size(), 0);
    std::vector<double> wordMax(n, 0), textMax(n, 0);
    for (size_t r = 0; r < m_rows.size(); ++r) {
        const QStringList &row = m_rows[r];
        for (size_t c = 0; c < n && c < size_t(row.size()); ++c) {
            const QString &v = row[qsizetype(c)];
            const double w = detail.width(v);
            m_cellWidths[r * n + c] = float(w);
            textMax[c] = std::max(textMax[c], w);
            if (w > kTextCap && v.contains(QLatin1Char(' ')))
                wordMax[c] = std::max(wordMax[c], detail.longestWord(v));
            else
                wordMax[c] = std::max(wordMax[c], w);
        }
    }
    for (size_t c = 0; c < n; ++c) {
        const double title = std::max(head.longestWord(heads[qsizetype(c)]),
                                      std::min(head.width(heads[qsizetype(c)]), kTitleCap));
        const double text = std::max(wordMax[c], std::min(textMax[c], kTextCap));
        // A little slack: device fonts may set text slightly wider than measured.
        m_naturalWidths[c] = std::max(title, text) * 1.04;
    }
}

void ReportDocument::layout() const
{
    if (!m_pages.empty())
        return;
    measure();
    const QRectF body = bodyRect();
    const size_t n = m_naturalWidths.size();
    auto columnWidth = [&](size_t c, double scale) {
        return std::min(body.width(), std::max(kMinColumn, m_naturalWidths[c] * scale + 2 * kCellPad));
    };
    auto total = [&](double scale) {
        double t = 0;
        for (size_t c = 0; c < n; ++c)
            t += columnWidth(c, scale);
        return t;
    };
    // The largest text that fits the page, else the smallest and bands.
    m_scale = kMinScale;
    for (const double scale : {1.0, 0.9, 0.8, 0.75, 0.7, kMinScale})
        if (total(scale) <= body.width()) {
            m_scale = scale;
            break;
        }
    m_widths.assign(n, 0);
    for (size_t c = 0; c < n; ++c)
        m_widths[c] = columnWidth(c, m_scale);
    m_bands.clear();
    std::vector<int> band;
    double used = 0;
    const bool repeatFirst = n > 1 && m_widths[0] < body.width() / 3;
    for (size_t c = 0; c < n; ++c) {
        if (!band.empty() && used + m_widths[c] > body.width() + 0.5) {
            m_bands.push_back(band);
            band.clear();
            used = 0;
            if (repeatFirst) {
                band.push_back(0);
                used = m_widths[0];
            }
        }
        band.push_back(int(c));
        used += m_widths[c];
    }
    if (!band.empty() || m_bands.empty())
        m_bands.push_back(band);

    m_headGlyphs = std::make_shared<GlyphSetter>(fontFor(QStringLiteral("Header")));
    m_detailGlyphs = std::make_shared<GlyphSetter>(fontFor(QStringLiteral("Detail")));
    const QFontMetricsF detail(fontFor(QStringLiteral("Detail")));
    const QFontMetricsF head(fontFor(QStringLiteral("Header")));
    const QStringList heads = titles();
    auto lines = [&](const QFontMetricsF &fm, const QString &text, double textWidth, double width) {
        const double inner = std::max(1.0, width - 2 * kCellPad);
        if (textWidth <= inner || !m_def.wordWrap || !text.contains(QLatin1Char(' ')))
            return 1.0;
        const QRectF r = fm.boundingRect(QRectF(0, 0, inner, 1e7), Qt::TextWordWrap, text);
        return std::max(1.0, std::round(r.height() / fm.lineSpacing()));
    };
    m_titleHeight = head.height() + kCellPad;
    for (size_t c = 0; c < n; ++c)
        m_titleHeight = std::max(m_titleHeight, lines(head, heads[qsizetype(c)],
                                                      head.horizontalAdvance(heads[qsizetype(c)]), m_widths[c]) *
                                                        head.lineSpacing() +
                                                    kCellPad);
    // One height per row over all its columns, so that the bands of a
    // stretch of rows line up page by page.
    m_heights.assign(m_rows.size(), detail.height() + kCellPad);
    for (size_t r = 0; r < m_rows.size(); ++r) {
        double most = 1;
        for (size_t c = 0; c < n && c < size_t(m_rows[r].size()); ++c) {
            const double w = m_cellWidths[r * n + c] * m_scale;
            if (w > m_widths[c] - 2 * kCellPad)
                most = std::max(most, lines(detail, m_rows[r][qsizetype(c)], w, m_widths[c]));
        }
        m_heights[r] = std::min<double>(m_def.maxHeight, most * detail.lineSpacing() + kCellPad);
    }

    // The first page also carries the report title.
    const double titleBand = QFontMetricsF(fontFor(QStringLiteral("Title"))).height() * 1.5;
    Page page;
    double height = titleBand + m_titleHeight;
    for (int i = 0; i < int(m_rows.size()); ++i) {
        const double h = m_heights[size_t(i)];
        if (page.count > 0 && height + h > body.height()) {
            m_pages.push_back(page);
            page = Page{i, 0};
            height = m_titleHeight;
        }
        height += h;
        ++page.count;
    }
    m_pages.push_back(page);
}

int ReportDocument::pageCount() const
{
    layout();
    return int(m_pages.size() * m_bands.size());
}

int ReportDocument::bandCount() const
{
    layout();
    return int(m_bands.size());
}

double ReportDocument::fontScale() const
{
    layout();
    return m_scale;
}

std::vector<int> ReportDocument::bandColumns(int band) const
{
    layout();
    return band >= 0 && band < int(m_bands.size()) ? m_bands[size_t(band)] : std::vector<int>{};
}

void ReportDocument::paintPage(QPainter &p, int pageIndex) const
{
    layout();
    if (pageIndex < 0 || pageIndex >= pageCount())
        return;
    const int bands = int(m_bands.size());
    const Page &page = m_pages[size_t(pageIndex / bands)];
    const std::vector<int> &columns = m_bands[size_t(pageIndex % bands)];
    const QRectF body = bodyRect();
    const QSizeF paper = pageSizeTwips();
    ReportContext ctx{QFileInfo(m_def.databaseName).fileName(), m_def.recordSource, pageIndex + 1, pageCount(),
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
    QFont pageHeadFont = fontFor(QStringLiteral("Detail"));
    pageHeadFont.setPixelSize(int(std::lround(m_def.style(QStringLiteral("Detail")).size * 20)));
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

    const size_t n = m_widths.size();
    double width = 0;
    for (int c : columns)
        width += m_widths[size_t(c)];
    auto row = [&](const QStringList &cells, const float *measured, double h, const ReportStyle &style,
                   const QFont &font, GlyphSetter &glyphs) {
        if (style.back.isValid())
            p.fillRect(QRectF(body.left(), y, width, h), style.back);
        p.setFont(font);
        const QFontMetricsF fm(font);
        double x = body.left();
        for (int c : columns) {
            const double inner = m_widths[size_t(c)] - 2 * kCellPad;
            if (c < cells.size() && !cells[c].isEmpty()) {
                const QString &text = cells[c];
                const double w = measured ? measured[c] * m_scale : fm.horizontalAdvance(text);
                if (w <= inner) {
                    const QPointF origin(x + kCellPad, y + kCellPad / 2 + fm.ascent());
                    if (!glyphs.add(text, origin))
                        p.drawText(origin, text);
                } else if (m_def.wordWrap && text.contains(QLatin1Char(' '))) {
                    p.drawText(QRectF(x + kCellPad, y + kCellPad / 2, inner, h - kCellPad),
                               int(Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap), text);
                } else {
                    // Wider than the whole page: shortened, and the ellipsis says so.
                    p.drawText(QPointF(x + kCellPad, y + kCellPad / 2 + fm.ascent()),
                               fm.elidedText(text, Qt::ElideRight, inner));
                }
            }
            x += m_widths[size_t(c)];
        }
        glyphs.flush(p);
        p.setPen(QPen(QColor(160, 160, 160), 10));
        p.drawLine(QPointF(body.left(), y + h), QPointF(body.left() + width, y + h));
        p.setPen(Qt::black);
        y += h;
    };
    if (!columns.empty()) {
        row(titles(), nullptr, m_titleHeight, m_def.style(QStringLiteral("Header")), fontFor(QStringLiteral("Header")),
            *m_headGlyphs);
        const ReportStyle plain = m_def.style(QStringLiteral("Detail"));
        const QFont detail = fontFor(QStringLiteral("Detail"));
        for (int i = page.first; i < page.first + page.count; ++i)
            row(m_rows[size_t(i)], m_cellWidths.data() + size_t(i) * n, m_heights[size_t(i)], plain, detail,
                *m_detailGlyphs);
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

Status ReportDocument::print(QPagedPaintDevice &device, const ReportProgress &progress) const
{
    device.setPageOrientation(m_def.orientation == ReportOrientation::Landscape ? QPageLayout::Landscape
                                                                                : QPageLayout::Portrait);
    device.setPageMargins(QMarginsF(0, 0, 0, 0));
    // The page in twips as the device has it (a printer may use another paper).
    const QRectF full = device.pageLayout().fullRect(QPageLayout::Point);
    const QSizeF paper(full.width() * 20, full.height() * 20);
    const ReportDocument *doc = this;
    ReportDocument resized;
    if (std::abs(paper.width() - pageSizeTwips().width()) > 1 || std::abs(paper.height() - pageSizeTwips().height()) > 1) {
        resized = *this;
        resized.setPaperSize(paper);
        doc = &resized;
    }
    QPainter p;
    if (!p.begin(&device))
        return Error{QStringLiteral("Impossibile avviare la stampa.")};
    // The painter's origin is the printable area's; the page starts at the
    // paper's edge, and one unit is one twip.
    const QRect paint = device.pageLayout().paintRectPixels(device.logicalDpiX());
    const QRect fullPx = device.pageLayout().fullRectPixels(device.logicalDpiX());
    const double k = device.logicalDpiX() / kTwipsPerInch;
    const int pages = doc->pageCount();
    for (int i = 0; i < pages; ++i) {
        if (progress && !progress(i, pages)) {
            p.end();
            return Error{reporttext::kCancelled};
        }
        if (i > 0 && !device.newPage()) {
            p.end();
            return Error{QStringLiteral("Impossibile avviare la stampa.")};
        }
        p.save();
        p.translate(fullPx.left() - paint.left(), fullPx.top() - paint.top());
        p.scale(k, k);
        doc->paintPage(p, i);
        p.restore();
    }
    p.end();
    if (progress)
        progress(pages, pages);
    return {};
}

Status ReportDocument::writePdf(const QString &path, const ReportProgress &progress) const
{
    // Written beside the target and renamed when complete.
    const QString partial = path + QStringLiteral(".part");
    Status s;
    {
        QPdfWriter writer(partial);
        writer.setResolution(600);
        writer.setPageSize(QPageSize(QPageSize::A4));
        writer.setTitle(m_def.title);
        writer.setCreator(QStringLiteral("Mervola"));
        s = print(writer, progress);
    }
    if (!s || !QFileInfo::exists(partial)) {
        QFile::remove(partial);
        return s ? Status(Error{reporttext::kWriteFailed.arg(path)}) : s;
    }
    if (QFile::exists(path) && !QFile::remove(path)) {
        QFile::remove(partial);
        return Error{reporttext::kWriteFailed.arg(path)};
    }
    if (!QFile::rename(partial, path))
        return Error{reporttext::kWriteFailed.arg(path)};
    return {};
}

Status turnWideReport(const AtlasHome &home)
{
    auto doc = ReportDocument::load(home);
    if (!doc)
        return doc.error();
    if (doc->bandCount() < 2 || doc->definition().orientation == ReportOrientation::Landscape)
        return {};
    ReportDocument turned = *doc;
    turned.setOrientation(ReportOrientation::Landscape);
    if (turned.bandCount() >= doc->bandCount())
        return {};
    return setReportOrientation(home, ReportOrientation::Landscape);
}

} // namespace mervola
