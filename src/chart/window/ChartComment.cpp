#include "chart/window/ChartComment.h"

#include "app/ui/PlainText.h"
#include "chart/data/ChartColors.h"

#include <QEvent>

using namespace Qt::StringLiterals;

namespace {

constexpr int leftEdge = 6;
constexpr int belowLegend = 34;
constexpr int gap = 4;

} // namespace

ChartComment::ChartComment(const QWidget& panel, QWidget* chart)
    : QLabel(chart)
    , m_panel(panel)
{
    setObjectName(u"chartComment"_s);
    makePlain(this);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setColors({});
    hide();
    chart->installEventFilter(this);
    const_cast<QWidget&>(panel).installEventFilter(this);
}

ChartComment::~ChartComment() = default;

void ChartComment::setComment(const QString& text)
{
    if (text == this->text())
        return;
    setText(text);
    setVisible(!text.isEmpty());
    place();
}

void ChartComment::setColors(const ChartColors& colors)
{
    setStyleSheet(u"#chartComment{color:%1;background:%2;border:none;padding:2px 4px;}"_s.arg(
        colors.axis.name(), colors.background.name()));
    place();
}

bool ChartComment::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Resize:
    case QEvent::Move:
    case QEvent::Show:
    case QEvent::Hide:
        place();
        break;
    default:
        break;
    }
    return QLabel::eventFilter(watched, event);
}

void ChartComment::place()
{
    if (text().isEmpty())
        return;
    const int top = m_panel.isHidden() ? belowLegend : qMax(belowLegend, m_panel.geometry().bottom() + gap);
    const QSize room = parentWidget()->size() - QSize(leftEdge, top);
    const QSize size = sizeHint().boundedTo(room.expandedTo(QSize(0, 0)));
    setGeometry(QRect(QPoint(leftEdge, top), size));
}
