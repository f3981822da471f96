#include "mainwindow/StatusPanel.h"

#include "app/base/ServerText.h"
#include "app/ui/ErrorLabel.h"
#include "app/ui/WheelFocus.h"
#include "mainwindow/FittingLabel.h"
#include "net/WsClient.h"

#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QStatusBar>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int trafficPauseMs = 250;
constexpr int failureMs = 10'000;
constexpr int selectorCharacters = 36;
constexpr int leastSelectorCharacters = 14;
/// Beside a message, in pixels.
constexpr int messageMargins = 16;
constexpr auto connectedColor = "#26d367"_L1;

QLabel* addLabel(QStatusBar& bar, QLabel* label, const QString& name, Qt::TextFormat format)
{
    label->setObjectName(name);
    label->setTextFormat(format);
    bar.addPermanentWidget(label);
    return label;
}

} // namespace

StatusPanel::StatusPanel(QStatusBar& bar, const QString& server, QObject* parent)
    : QObject(parent)
    , m_bar(bar)
    , m_server(shownSentence(server).toHtmlEscaped())
    , m_accountSelector(new QComboBox(&bar))
    , m_spokenFailure(new ErrorLabel(&bar))
{
    m_spokenFailure->setFixedSize(0, 0); // the message beside it is what is seen
    m_accountSelector->setObjectName(u"accountSelector"_s);
    m_accountSelector->setToolTip(tr("Trading account"));
    m_accountSelector->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_accountSelector->setMinimumContentsLength(selectorCharacters);
    takeWheelOnlyFocused(*m_accountSelector);
    m_accountSelector->ensurePolished();
    m_accountSelector->setMinimumWidth(
        m_accountSelector->fontMetrics().averageCharWidth() * leastSelectorCharacters);
    bar.addPermanentWidget(m_accountSelector);
    m_connection = addLabel(bar, new FittingLabel(&bar), u"connectionLabel"_s, Qt::RichText);
    m_latency = addLabel(bar, new QLabel(&bar), u"latencyLabel"_s, Qt::PlainText);
    m_traffic = addLabel(bar, new QLabel(&bar), u"trafficLabel"_s, Qt::RichText);
    m_user = addLabel(bar, new FittingLabel(&bar), u"userLabel"_s, Qt::PlainText);
    m_user->setText(tr("Not logged in"));
    m_user->setStyleSheet(u"color:#8a94a6;"_s);
    setConnected(false);
    showTraffic();

    m_trafficPause.setSingleShot(true);
    m_trafficPause.setInterval(trafficPauseMs);
    connect(&m_trafficPause, &QTimer::timeout, this, &StatusPanel::showTraffic);

    // Tips of menu entries clear the message behind them; what stood there comes back.
    connect(&bar, &QStatusBar::messageChanged, this, [this](const QString& message) {
        if (message != m_failure)
            m_spokenFailure->hide();
        if (message.isEmpty())
            showMessage();
        else
            keepRoomFor(message);
    });
    bar.installEventFilter(this);
    showMessage();
}

bool StatusPanel::eventFilter(QObject* watched, QEvent* event)
{
    // A message that had too little room has more of it in a wider window.
    if (watched == &m_bar && event->type() == QEvent::Resize)
        keepRoomFor(m_bar.currentMessage());
    return QObject::eventFilter(watched, event);
}

void StatusPanel::setHint(const QString& hint)
{
    if (std::exchange(m_hint, hint) != hint)
        showMessage();
}

void StatusPanel::setFailure(const QString& line)
{
    if (!line.isEmpty()) {
        m_failure = shownEntry(line);
        m_bar.showMessage(m_failure, failureMs);
        m_spokenFailure->showError(m_failure);
    } else if (m_bar.currentMessage() == m_failure) {
        showMessage();
    }
}

void StatusPanel::showMessage()
{
    m_bar.showMessage(m_hint.isEmpty() ? tr("For Help, press F1") : m_hint);
}

void StatusPanel::follow(const WsClient& feed)
{
    connect(&feed, &WsClient::connected, this, [this] { setConnected(true); });
    connect(&feed, &WsClient::disconnected, this, [this] { setConnected(false); });
    connect(&feed, &WsClient::latencyChanged, this, &StatusPanel::setLatency);
    connect(&feed, &WsClient::trafficChanged, this, &StatusPanel::setTraffic);
}

QString StatusPanel::hostOf(const QString& address)
{
    const QString host = QUrl(address).host();
    return host.isEmpty() ? address : host;
}

/// The bar would give its widgets all that they ask for, and the message what is left.
void StatusPanel::keepRoomFor(const QString& message)
{
    m_bar.ensurePolished();
    const int wanted = m_bar.fontMetrics().horizontalAdvance(message) + messageMargins;
    const QMargins before = m_bar.contentsMargins();
    const int widgets = m_bar.minimumSizeHint().width() - before.left() - before.right();
    // A longer message than there is room for must not make the window wider.
    const int idle = m_bar.fontMetrics().horizontalAdvance(tr("For Help, press F1")) + messageMargins;
    const int room = std::max(idle, std::min(wanted, m_bar.width() - widgets));
    if (m_bar.layoutDirection() == Qt::RightToLeft)
        m_bar.setContentsMargins(0, 0, room, 0);
    else
        m_bar.setContentsMargins(room, 0, 0, 0);
}

void StatusPanel::setUser(const QString& email)
{
    m_user->setStyleSheet({});
    m_user->setText(shownSentence(email));
}

void StatusPanel::setConnected(bool connected)
{
    m_connection->setText(connected
            ? tr("<span style='color:#26d367'>●</span> %1 — %2").arg(tr("Connected"), m_server)
            : tr("<span style='color:#ff6b6b'>●</span> %1 — %2").arg(tr("Disconnected"), m_server));
}

void StatusPanel::setLatency(int milliseconds)
{
    //: how long a message takes to the server and back
    m_latency->setText(tr("(%1 ms)").arg(milliseconds));
}

void StatusPanel::setTraffic(quint64 received, quint64 sent)
{
    m_received = received;
    m_sent = sent;
    if (!m_trafficPause.isActive())
        m_trafficPause.start();
}

QString StatusPanel::kilobytes(quint64 bytes)
{
    return QString::number(double(bytes) / 1024.0, 'f', 1);
}

void StatusPanel::showTraffic()
{
    //: traffic: %1 a colour, %2 messages, %3 kilobytes
    const QString text = tr("<span style='color:%1'>●</span> %2 / %3 Kb")
                             .arg(QString(connectedColor), kilobytes(m_received), kilobytes(m_sent));
    if (text != m_traffic->text())
        m_traffic->setText(text);
}
