#include "mainwindow/FittingLabel.h"

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QPainter>
#include <QTextCursor>
#include <QTextDocument>
#include <QToolTip>

namespace {

/// Fewer say nothing.
constexpr int leastCharacters = 10;

/// Takes characters off the end until the text fits, and says by three dots that it did.
void shorten(QTextDocument& document, qreal room)
{
    QTextCursor end(&document);
    end.movePosition(QTextCursor::End);
    end.insertText(QString(QChar(0x2026)));
    while (document.idealWidth() > room && end.position() > 1) {
        end.movePosition(QTextCursor::PreviousCharacter);
        end.deletePreviousChar();
        end.movePosition(QTextCursor::End);
    }
}

} // namespace

FittingLabel::FittingLabel(QWidget* parent)
    : QLabel(parent)
{
}

FittingLabel::~FittingLabel() = default;

QSize FittingLabel::minimumSizeHint() const
{
    const QSize whole = sizeHint();
    const int margins = width() - contentsRect().width();
    const int least = fontMetrics().averageCharWidth() * leastCharacters + margins;
    return {std::min(whole.width(), least), whole.height()};
}

bool FittingLabel::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || fits())
        return QLabel::event(event);
    const QString all = textFormat() == Qt::RichText ? text() : text().toHtmlEscaped();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), all, this);
    return true;
}

void FittingLabel::paintEvent(QPaintEvent* event)
{
    if (fits())
        return QLabel::paintEvent(event);
    const QRect room = contentsRect();
    QTextDocument document;
    document.setDocumentMargin(0);
    document.setDefaultFont(font());
    if (textFormat() == Qt::RichText)
        document.setHtml(text());
    else
        document.setPlainText(text());
    shorten(document, room.width());

    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, palette().color(foregroundRole()));
    QPainter painter(this);
    painter.translate(room.left(), room.top() + (room.height() - document.size().height()) / 2);
    document.documentLayout()->draw(&painter, context);
}
