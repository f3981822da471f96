#include "orders/OrderTypePanel.h"

#include "orders/OrderIcons.h"

#include <QButtonGroup>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr auto typeStyle
    = "QPushButton{ text-align:left; padding:8px 10px; border:none;background:transparent; color:#222; }"
      "QPushButton:checked{ background:#ffffff; border-left:3px solid #0e639c;font-weight:bold; }"
      "QPushButton:hover{ background:#e8e8e8; }"_L1;

/// Of the panel, unless its texts need more.
constexpr int usualWidth = 200;

constexpr auto toolStyle
    = "QPushButton{ text-align:left; padding:6px 10px; border:none;background:transparent; color:#444; } "
      "QPushButton:hover{ background:#e8e8e8; }"_L1;

// No button here ever becomes the one that Enter presses.
QPushButton* addButton(QVBoxLayout* layout, const QString& text, OrderIcon icon, QLatin1StringView style)
{
    auto* button = new QPushButton(orderIcon(icon), text);
    button->setAutoDefault(false);
    button->setStyleSheet(style);
    layout->addWidget(button);
    return button;
}

/// By how much a chosen type is wider than the same one among the others.
int roomForChoice(const QList<QAbstractButton*>& types)
{
    constexpr int mark = 3;
    int most = 0;
    for (const QAbstractButton* type : types) {
        QFont bold = type->font();
        bold.setBold(true);
        most = std::max(most,
            QFontMetrics(bold).horizontalAdvance(type->text())
                - type->fontMetrics().horizontalAdvance(type->text()));
    }
    return most + mark;
}

} // namespace

OrderTypePanel::OrderTypePanel(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet("background:#f3f3f3;"_L1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 12, 8, 12);
    layout->setSpacing(2);

    auto* types = new QButtonGroup(this);
    const auto addType = [&](OrderType type, const QString& text, OrderIcon icon) {
        QPushButton* button = addButton(layout, text, icon, typeStyle);
        button->setCheckable(true);
        button->setCursor(Qt::PointingHandCursor);
        types->addButton(button, int(type));
        m_focusOrder.append(button);
        return button;
    };
    addType(OrderType::Market, tr("Market Execution"), OrderIcon::Market)->setChecked(true);
    addType(OrderType::Limit, tr("Limit Order"), OrderIcon::Limit);
    addType(OrderType::Stop, tr("Stop Order"), OrderIcon::Stop);
    QPushButton* stopLimit = addType(OrderType::StopLimit, tr("Stop Limit Order"), OrderIcon::StopLimit);
    stopLimit->setEnabled(false);
    stopLimit->setToolTip(tr("Not available on this platform"));
    layout->addStretch();

    addButton(layout, tr("One Click Trading"), OrderIcon::OneClick, toolStyle)->setEnabled(false);
    addButton(layout, tr("Tick Chart"), OrderIcon::TickChart, toolStyle)->setEnabled(false);
    addButton(layout, tr("Depth of Market"), OrderIcon::Depth, toolStyle)->setEnabled(false);
    QPushButton* leave = addButton(layout, tr("Minimize"), OrderIcon::Minimize, toolStyle);
    m_focusOrder.append(leave);
    setFixedWidth(std::max(usualWidth, layout->sizeHint().width() + roomForChoice(types->buttons())));

    connect(types, &QButtonGroup::idClicked, this, [this](int id) { Q_EMIT typeChosen(OrderType(id)); });
    connect(leave, &QPushButton::clicked, this, &OrderTypePanel::leaveRequested);
}
