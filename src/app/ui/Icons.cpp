#include "app/ui/Icons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace mervola {

namespace {

const QColor kInk(38, 50, 56);
const QColor kAccent(33, 120, 200);
const QColor kGreen(46, 139, 87);
const QColor kRed(200, 60, 50);

void magnifier(QPainter &p, const QString &sign)
{
    p.setPen(QPen(kInk, 2.2, Qt::SolidLine, Qt::RoundCap));
    p.setBrush(QColor(230, 242, 252));
    p.drawEllipse(QPointF(10, 10), 6.5, 6.5);
    p.drawLine(QPointF(15, 15), QPointF(21, 21));
    p.setPen(QPen(kAccent, 2.2, Qt::SolidLine, Qt::RoundCap));
    if (!sign.isEmpty())
        p.drawLine(QPointF(7, 10), QPointF(13, 10));
    if (sign == QLatin1String("+"))
        p.drawLine(QPointF(10, 7), QPointF(10, 13));
}

void square(QPainter &p, const QString &sign)
{
    p.setPen(QPen(kInk, 1.8));
    p.setBrush(QColor(230, 242, 252));
    p.drawRoundedRect(QRectF(3.5, 3.5, 17, 17), 3, 3);
    p.setPen(QPen(kAccent, 2.4, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(7.5, 12), QPointF(16.5, 12));
    if (sign == QLatin1String("+"))
        p.drawLine(QPointF(12, 7.5), QPointF(12, 16.5));
}

void letterA(QPainter &p, bool struck)
{
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPixelSize(17);
    f.setBold(true);
    p.setFont(f);
    p.setPen(kInk);
    p.drawText(QRectF(0, 0, 20, 22), Qt::AlignCenter, QStringLiteral("A"));
    p.setPen(QPen(kAccent, 2));
    p.drawLine(QPointF(4, 21), QPointF(17, 21));
    if (struck) {
        p.setPen(QPen(kRed, 2.4, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(QPointF(15, 9), QPointF(22, 16));
        p.drawLine(QPointF(22, 9), QPointF(15, 16));
    }
}

void draw(QPainter &p, const QString &k)
{
    p.setRenderHint(QPainter::Antialiasing);
    if (k == QLatin1String("apri")) {
        p.setPen(QPen(kInk, 1.6));
        p.setBrush(QColor(246, 200, 90));
        QPainterPath path;
        path.moveTo(2.5, 6);
        path.lineTo(9, 6);
        path.lineTo(11, 8);
        path.lineTo(20, 8);
        path.lineTo(20, 19);
        path.lineTo(2.5, 19);
        path.closeSubpath();
        p.drawPath(path);
        p.setBrush(QColor(252, 222, 140));
        p.drawPolygon(QPolygonF({{5, 11}, {22.5, 11}, {20, 19}, {2.5, 19}}));
    } else if (k == QLatin1String("salva")) {
        p.setPen(QPen(kInk, 1.6));
        p.setBrush(kAccent);
        p.drawRoundedRect(QRectF(3.5, 3.5, 17, 17), 2, 2);
        p.setBrush(Qt::white);
        p.drawRect(QRectF(7, 3.5, 10, 6));
        p.drawRect(QRectF(6.5, 13, 11, 7.5));
    } else if (k == QLatin1String("stampa")) {
        p.setPen(QPen(kInk, 1.6));
        p.setBrush(Qt::white);
        p.drawRect(QRectF(7, 3, 10, 6));
        p.setBrush(QColor(120, 132, 140));
        p.drawRoundedRect(QRectF(3, 9, 18, 8), 2, 2);
        p.setBrush(Qt::white);
        p.drawRect(QRectF(7, 14, 10, 7));
    } else if (k == QLatin1String("totale")) {
        p.setPen(QPen(kInk, 1.6));
        p.setBrush(QColor(200, 230, 201));
        p.drawEllipse(QPointF(12, 12), 8.5, 8.5);
        p.setPen(QPen(kGreen, 1.4));
        p.drawEllipse(QPointF(12, 12), 4, 8.5);
        p.drawLine(QPointF(3.5, 12), QPointF(20.5, 12));
    } else if (k == QLatin1String("cerca")) {
        magnifier(p, QString());
    } else if (k == QLatin1String("query")) {
        p.setPen(QPen(kInk, 1.6));
        p.setBrush(QColor(230, 242, 252));
        p.drawPolygon(QPolygonF({{3, 4}, {21, 4}, {14, 12}, {14, 20}, {10, 18}, {10, 12}}));
    } else if (k == QLatin1String("tooltip")) {
        p.setPen(QPen(kInk, 1.6));
        p.setBrush(QColor(255, 249, 196));
        p.drawRoundedRect(QRectF(2.5, 3.5, 19, 12), 3, 3);
        p.drawPolygon(QPolygonF({{7, 15.5}, {7, 21}, {12, 15.5}}));
        p.setPen(QPen(kInk, 1.4));
        p.drawLine(QPointF(6, 8), QPointF(18, 8));
        p.drawLine(QPointF(6, 11.5), QPointF(14, 11.5));
    } else if (k == QLatin1String("info")) {
        p.setPen(Qt::NoPen);
        p.setBrush(kAccent);
        p.drawEllipse(QPointF(12, 12), 9.5, 9.5);
        p.setBrush(Qt::white);
        p.drawEllipse(QPointF(12, 7.3), 1.6, 1.6);
        p.drawRoundedRect(QRectF(10.6, 10, 2.8, 8.5), 1, 1);
    } else if (k == QLatin1String("zoomin")) {
        magnifier(p, QStringLiteral("+"));
    } else if (k == QLatin1String("zoomout")) {
        magnifier(p, QStringLiteral("-"));
    } else if (k == QLatin1String("zoomtema")) {
        p.setPen(QPen(kInk, 1.5));
        p.setBrush(QColor(200, 230, 201));
        p.drawPolygon(QPolygonF({{4, 9}, {12, 5}, {20, 9}, {12, 13}}));
        p.setBrush(QColor(255, 236, 179));
        p.drawPolygon(QPolygonF({{4, 15}, {12, 11}, {20, 15}, {12, 19}}));
        p.setPen(QPen(kAccent, 1.6, Qt::DashLine));
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRectF(2, 3, 20, 18));
    } else if (k == QLatin1String("zoominfix")) {
        square(p, QStringLiteral("+"));
    } else if (k == QLatin1String("zoomoutfix")) {
        square(p, QStringLiteral("-"));
    } else if (k == QLatin1String("zoomprec")) {
        p.setPen(QPen(kAccent, 2.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(Qt::NoBrush);
        QPainterPath path;
        path.moveTo(19, 18);
        path.cubicTo(19, 8, 12, 7, 6, 8);
        p.drawPath(path);
        p.drawPolyline(QPolygonF({{10, 4}, {5.5, 8}, {10, 12}}));
    } else if (k == QLatin1String("label")) {
        letterA(p, false);
    } else if (k == QLatin1String("nolabel")) {
        letterA(p, true);
    } else if (k == QLatin1String("legenda")) {
        const QColor swatches[] = {QColor(255, 236, 179), QColor(255, 183, 77), QColor(230, 81, 0)};
        for (int i = 0; i < 3; ++i) {
            p.setPen(QPen(kInk, 1.2));
            p.setBrush(swatches[i]);
            p.drawRect(QRectF(3, 3.5 + i * 6.5, 6, 5));
            p.setPen(QPen(kInk, 1.6));
            p.drawLine(QPointF(12, 6 + i * 6.5), QPointF(21, 6 + i * 6.5));
        }
    } else if (k == QLatin1String("esporta")) {
        p.setPen(QPen(kInk, 1.5));
        p.setBrush(QColor(200, 230, 201));
        p.drawRect(QRectF(2.5, 6.5, 14, 13));
        p.setBrush(kGreen);
        p.drawPolygon(QPolygonF({{3, 19}, {8, 12}, {12, 16}, {16, 13}, {16, 19}}));
        p.setPen(QPen(kAccent, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawLine(QPointF(14, 4), QPointF(21, 4));
        p.drawPolyline(QPolygonF({{18, 1.5}, {21, 4}, {18, 6.5}}));
    } else if (k == QLatin1String("dbf")) {
        p.setPen(QPen(kInk, 1.4));
        p.setBrush(Qt::white);
        p.drawRect(QRectF(3, 4, 18, 16));
        p.setBrush(kAccent);
        p.drawRect(QRectF(3, 4, 18, 4));
        for (int i = 1; i < 3; ++i)
            p.drawLine(QPointF(3, 8 + i * 4), QPointF(21, 8 + i * 4));
        p.drawLine(QPointF(10, 8), QPointF(10, 20));
    } else if (k == QLatin1String("uscita")) {
        p.setPen(QPen(kInk, 1.6));
        p.setBrush(QColor(215, 204, 200));
        p.drawRect(QRectF(4, 3, 10, 18));
        p.setPen(QPen(kRed, 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawLine(QPointF(11, 12), QPointF(21, 12));
        p.drawPolyline(QPolygonF({{17.5, 8.5}, {21, 12}, {17.5, 15.5}}));
    } else if (k == QLatin1String("pan")) {
        p.setPen(QPen(kInk, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawLine(QPointF(12, 3), QPointF(12, 21));
        p.drawLine(QPointF(3, 12), QPointF(21, 12));
        p.drawPolyline(QPolygonF({{9, 6}, {12, 3}, {15, 6}}));
        p.drawPolyline(QPolygonF({{9, 18}, {12, 21}, {15, 18}}));
        p.drawPolyline(QPolygonF({{6, 9}, {3, 12}, {6, 15}}));
        p.drawPolyline(QPolygonF({{18, 9}, {21, 12}, {18, 15}}));
    } else {  // the application: a mountain under a sun
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(255, 193, 7));
        p.drawEllipse(QPointF(17, 6), 3.5, 3.5);
        p.setBrush(kGreen);
        p.drawPolygon(QPolygonF({{1, 21}, {9, 7}, {14, 14}, {17, 11}, {23, 21}}));
    }
}

}  // namespace

QIcon commandIcon(const QString &key)
{
    QIcon icon;
    for (int size : {24, 48}) {
        QPixmap pm(size, size);
        pm.fill(Qt::transparent);
        QPainter p(&pm);
        p.scale(size / 24.0, size / 24.0);
        draw(p, key);
        p.end();
        icon.addPixmap(pm);
    }
    return icon;
}

}  // namespace mervola
