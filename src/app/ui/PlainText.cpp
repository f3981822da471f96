#include "app/ui/PlainText.h"

#include "app/base/ServerText.h"

#include <QLabel>
#include <QTextBoundaryFinder>
#include <QTextDocument>

using namespace Qt::StringLiterals;

namespace {

constexpr QChar zeroWidthSpace(0x200b);

/// The text with places to break in each word that is too wide without.
QString breakable(const QString& text, const QFontMetrics& metrics)
{
    constexpr int widestWord = 300; // what the narrowest dialog has room for
    constexpr qsizetype longestPart = 24;
    QString result;
    QTextBoundaryFinder places(QTextBoundaryFinder::Line, text);
    for (qsizetype from = 0; from < text.size();) {
        const qsizetype next = places.toNextBoundary();
        const qsizetype end = next > from ? next : text.size();
        const bool fits = metrics.horizontalAdvance(text.sliced(from, end - from)) <= widestWord;
        while (!fits && end - from > longestPart) {
            const qsizetype taken = longestPart - (text.at(from + longestPart).isLowSurrogate() ? 1 : 0);
            result += text.sliced(from, taken) + zeroWidthSpace;
            from += taken;
        }
        result += text.sliced(from, end - from);
        from = end;
    }
    return result;
}

} // namespace

QString plainToolTip(const QString& text)
{
    QString shown = shownSentence(text);
    if (!Qt::mightBeRichText(shown))
        return shown;
    return "<span style=\"white-space:pre-wrap\">"_L1 + shown.toHtmlEscaped() + "</span>"_L1;
}

void makePlain(QLabel* label)
{
    label->setTextFormat(Qt::PlainText);
}

void showReason(QLabel& label, const QString& text)
{
    label.setText(breakable(shownReason(text), label.fontMetrics()));
}

QLabel* plainLabel(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(parent);
    makePlain(label);
    label->setText(text);
    return label;
}
