#include "chart/window/OneClickPanel.h"

#include "app/base/NumberFormat.h"
#include "app/ui/DecimalSpinBox.h"
#include "app/ui/EnterPress.h"
#include "app/ui/LetterSize.h"
#include "chart/window/CompactButton.h"
#include "chart/window/SpinArrows.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QStatusTipEvent>

#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize buttonSize(62, 30);
constexpr QSize volumeSize(66, 30);

/// The style rule for one arrow. Empty, which leaves the theme's own arrow, when there is no file or its path
/// cannot stand between quotes.
QString arrowRule(const QString& part, const QString& path)
{
    if (path.isEmpty() || path.contains(u'"') || path.contains(u'\\'))
        return {};
    return u"QDoubleSpinBox::%1{image:url(\"%2\");width:9px;height:6px;}"_s.arg(part, path);
}

QString volumeStyle()
{
    return u"QDoubleSpinBox{background:#ffffff;color:#000000;border:1px solid #666666;font-size:9pt;"
           "padding:1px 2px 1px 4px;}"
           "QDoubleSpinBox::up-button{subcontrol-origin:border;subcontrol-position:top right;width:16px;"
           "background:#dcdcdc;border-left:1px solid #8f8f8f;border-bottom:1px solid #b5b5b5;}"
           "QDoubleSpinBox::down-button{subcontrol-origin:border;subcontrol-position:bottom right;"
           "width:16px;background:#dcdcdc;border-left:1px solid #8f8f8f;}"
           "QDoubleSpinBox::up-button:hover,QDoubleSpinBox::down-button:hover{background:#bcd8f0;}"_s
        + arrowRule(u"up-arrow"_s, writeSpinArrow(SpinArrow::Up))
        + arrowRule(u"down-arrow"_s, writeSpinArrow(SpinArrow::Down));
}

struct ButtonColors final {
    const char* plate;
    const char* hovered;
    const char* slant; ///< a rule of its own, or none
};

constexpr ButtonColors liveSell{"#c0392b", "#d64535", ""};
constexpr ButtonColors liveBuy{"#1f6fb2", "#2a80c8", ""};
// Pale rather than grey, since they are no less buttons, and which is which still matters.
constexpr ButtonColors oldSell{"#735a57", "#7d625e", "font-style:italic;"};
constexpr ButtonColors oldBuy{"#56636f", "#616e7c", "font-style:italic;"};

QString buttonStyle(const ButtonColors& colors)
{
    return u"QPushButton{background:%1;border:none;color:#ffffff;font-weight:bold;%3font-size:7.5pt;"
           "border-radius:2px;}QPushButton:hover{background:%2;}"_s.arg(
               QLatin1String(colors.plate), QLatin1String(colors.hovered), QLatin1String(colors.slant));
}

/// A price with its ends cut off reads as another price: a long one is written narrower.
void fitCaption(QPushButton& button)
{
    const int room = button.width() - 4;
    button.ensurePolished();
    QFont font = button.font();
    font.setStretch(QFont::AnyStretch);
    const int width = QFontMetrics(font).size(0, button.text()).width();
    const int stretch = width > room ? QFont::Unstretched * room / width : int(QFont::AnyStretch);
    if (stretch == button.font().stretch())
        return;
    QFont stretched; // and nothing else, for the style sheet to choose weight and slant again later
    stretched.setStretch(stretch);
    button.setFont(stretched);
}

/// Marks what lies below the button instead of the button. Qt paints a chart, which is opaque, by itself, and
/// then what is translucent with all that lies below it: a price would paint its chart twice.
void setTextOnChart(QPushButton& button, const QString& text)
{
    QWidget& chart = *button.parentWidget()->parentWidget();
    const qreal scale = chart.devicePixelRatioF();
    if (scale != std::floor(scale) || !button.isVisible())
        return button.setText(text);
    button.setAttribute(Qt::WA_UpdatesDisabled);
    button.setText(text);
    button.setAttribute(Qt::WA_UpdatesDisabled, false);
    chart.update(QRect(button.mapTo(&chart, QPoint(0, 0)), button.size()));
}

void showCaption(QPushButton& button, const QString& caption)
{
    // Digits are equally wide, so a price as long as the last one need not be measured.
    const bool isAsLong = caption.size() == button.text().size();
    setTextOnChart(button, caption);
    if (!isAsLong)
        fitCaption(button);
}

QPushButton* tradeButton(const QString& caption, const ButtonColors& colors, QWidget* parent)
{
    auto* button = new CompactButton(withLetters(buttonSize, *parent), parent);
    button->setText(caption);
    button->setCursor(Qt::PointingHandCursor);
    button->setStyleSheet(buttonStyle(colors));
    // A click must not leave the focus here, where the next press of the space bar would trade.
    button->setFocusPolicy(Qt::TabFocus);
    // Enter draws and drags on the chart: one Tab too many must not make an order of it.
    EnterPress::spare(*button);
    return button;
}

} // namespace

OneClickPanel::OneClickPanel(const QString& symbol, QWidget* parent)
    : QWidget(parent)
    , m_symbol(symbol)
{
    constexpr int margin = 3;
    setObjectName(u"oneClickPanel"_s);
    setAttribute(Qt::WA_StyledBackground);
    setCursor(Qt::ArrowCursor);
    setStyleSheet(
        u"#oneClickPanel{background:rgba(28,28,28,205);border:1px solid #3a3a3a;border-radius:2px;}"_s);

    m_sell = tradeButton(tr("SELL\n—"), liveSell, this);
    m_volume = new DecimalSpinBox(this);
    m_volume->setDecimals(2);
    m_volume->setRange(0.01, 1000.0);
    m_volume->setSingleStep(0.01);
    m_volume->setValue(0.01);
    m_volume->setFixedSize(withLetters(volumeSize, *this));
    m_volume->setStyleSheet(volumeStyle());
    m_volume->setAccessibleName(tr("Volume in lots"));
    m_buy = tradeButton(tr("BUY\n—"), liveBuy, this);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(m_sell);
    layout->addWidget(m_volume);
    layout->addWidget(m_buy);
    move(6, 20);

    for (QPushButton* button : {m_sell, m_buy})
        button->installEventFilter(this);
    connect(m_sell, &QPushButton::clicked, this, [this] { request(u"SELL"_s); });
    connect(m_buy, &QPushButton::clicked, this, [this] { request(u"BUY"_s); });
}

OneClickPanel::~OneClickPanel() = default;

void OneClickPanel::setQuote(double bid, double ask, int digits)
{
    if (bid != m_bid || digits != m_digits)
        showCaption(*m_sell, tr("SELL\n%1").arg(formatPrice(bid, digits)));
    if (ask != m_ask || digits != m_digits)
        showCaption(*m_buy, tr("BUY\n%1").arg(formatPrice(ask, digits)));
    m_bid = bid;
    m_ask = ask;
    m_digits = digits;
}

void OneClickPanel::setStale(bool stale)
{
    if (std::exchange(m_stale, stale) == stale)
        return;
    m_sell->setStyleSheet(buttonStyle(stale ? oldSell : liveSell));
    m_buy->setStyleSheet(buttonStyle(stale ? oldBuy : liveBuy));
    for (QPushButton* button : {m_sell, m_buy}) {
        //: said of the button of one-click trading while the feed is down
        button->setAccessibleDescription(stale ? tr("last known price") : QString());
        fitCaption(*button);
    }
}

double OneClickPanel::lots() const
{
    return m_volume->value();
}

void OneClickPanel::request(const QString& side)
{
    // A half-typed number is put back to the last whole one, so that the box shows what is traded.
    m_volume->interpretText();
    Q_EMIT quickTradeRequested(m_symbol, side, lots());
}

void OneClickPanel::mousePressEvent(QMouseEvent* event)
{
    event->accept();
}

void OneClickPanel::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
}

void OneClickPanel::mouseDoubleClickEvent(QMouseEvent* event)
{
    event->accept();
}

void OneClickPanel::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
}

void OneClickPanel::keyPressEvent(QKeyEvent* event)
{
    // What the panel has no use for is not meant for the chart below, which would delete a drawing or place
    // one. Only Escape is: it ends what is going on there, and leaves the buttons that trade at once.
    const bool leaves = event->key() == Qt::Key_Escape;
    event->setAccepted(!leaves);
    if (leaves && parentWidget())
        parentWidget()->setFocus(Qt::ShortcutFocusReason);
}

void OneClickPanel::hideEvent(QHideEvent* event)
{
    // Qt would move the focus on to whatever comes next.
    if (isHidden() && isAncestorOf(QApplication::focusWidget()))
        parentWidget()->setFocus(Qt::OtherFocusReason);
    QWidget::hideEvent(event);
}

bool OneClickPanel::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusOut)
        tell({});
    if (event->type() != QEvent::FocusIn)
        return QWidget::eventFilter(watched, event);
    // Only who went to a button by the Tab key knows that the next press trades. When a chart becomes active,
    // a dialog closes or the trader comes back from another window, Qt would put the focus back here.
    const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
    if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason) {
        tell(watched == m_sell ? tr("Space sells at once, at the market price")
                               : tr("Space buys at once, at the market price"));
        return QWidget::eventFilter(watched, event);
    }
    parentWidget()->setFocus(Qt::OtherFocusReason);
    return true;
}

void OneClickPanel::tell(const QString& words)
{
    QStatusTipEvent tip(words);
    QCoreApplication::sendEvent(parentWidget(), &tip);
}

void OneClickPanel::enterEvent(QEnterEvent* event)
{
    // For Qt a pointer over this child is still inside the chart, whose crosshair would stay on show.
    QEvent left(QEvent::Leave);
    QCoreApplication::sendEvent(parentWidget(), &left);
    QWidget::enterEvent(event);
}
