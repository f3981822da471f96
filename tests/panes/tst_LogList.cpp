#include "panes/FittingDelegate.h"
#include "panes/LogList.h"
#include "support/TestMain.h"

#include <QProxyStyle>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include <malloc.h>

using namespace Qt::StringLiterals;

namespace {

QString newestText(const LogList& list)
{
    return list.topLevelItem(list.topLevelItemCount() - 1)->text(2);
}

bool newestIsInSight(LogList& list)
{
    const QModelIndex newest = list.model()->index(list.topLevelItemCount() - 1, 0);
    const QRect row = list.visualRect(newest);
    return row.isValid() && list.viewport()->rect().contains(row.center());
}

void showWithManyRows(LogList& list)
{
    list.resize(400, 120);
    list.show();
    for (int i = 0; i < 200; ++i)
        list.append(u"s"_s, QString::number(i));
    QTRY_VERIFY(newestIsInSight(list));
}

// Counts how often the whole list is laid out: each layout asks the delegate for the one row height.
class CountingDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        ++m_asked;
        return QStyledItemDelegate::sizeHint(option, index);
    }
    mutable int m_asked = 0;
};

// Remembers how the last cell with a text of that length was painted.
class WatchingStyle final : public QProxyStyle {
public:
    explicit WatchingStyle(qsizetype length)
        : m_length(length)
    {
    }
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override
    {
        const auto* cell = qstyleoption_cast<const QStyleOptionViewItem*>(option);
        if (element == CE_ItemViewItem && cell && cell->text.size() == m_length)
            painted = *cell;
        QProxyStyle::drawControl(element, option, painter, widget);
    }
    mutable QStyleOptionViewItem painted;

private:
    qsizetype m_length;
};

} // namespace

class TestLogList final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsTimeSourceAndMessage()
    {
        LogList list(LogList::Clock::Milliseconds);
        const QDateTime before = QDateTime::currentDateTime();
        list.append(u"Trade"_s, u"Order placed"_s);
        const QDateTime after = QDateTime::currentDateTime();
        QCOMPARE(list.topLevelItemCount(), 1);
        const QTreeWidgetItem* row = list.topLevelItem(0);
        const QDateTime shown = QDateTime::fromString(row->text(0), u"yyyy.MM.dd HH:mm:ss.zzz"_s);
        QVERIFY(shown.isValid());
        QVERIFY(shown >= before && shown <= after);
        QCOMPARE(row->text(1), u"Trade"_s);
        QCOMPARE(row->text(2), u"Order placed"_s);
        QCOMPARE(list.columnWidth(0), 140);
        QCOMPARE(list.columnWidth(1), 110);
    }

    void coarseClockShowsNoMilliseconds()
    {
        LogList list(LogList::Clock::Seconds);
        list.append(u"a"_s, u"b"_s);
        QVERIFY(QDateTime::fromString(list.topLevelItem(0)->text(0), u"yyyy.MM.dd HH:mm:ss"_s).isValid());
    }

    void messagesStayOnOneLine()
    {
        LogList list(LogList::Clock::Seconds);
        list.append(u"So\nurce"_s, u"one\r\ntwo\u2028<b>three</b>"_s);
        QCOMPARE(list.topLevelItem(0)->text(1), u"So urce"_s);
        QCOMPARE(list.topLevelItem(0)->text(2), u"one  two <b>three</b>"_s);
    }

    void aLongSourceIsShownWhole()
    {
        LogList list(LogList::Clock::Seconds);
        const QString expert
            = u"MovingAverageCrossover_with_TrailingStop_and_NewsFilter_EURUSD_v2.3 (final)"_s;
        list.append(expert, u"loaded"_s);
        QCOMPARE(list.topLevelItem(0)->text(1), expert);
    }

    void lettersAreSetNarrowerOnlyAsFarAsNeeded()
    {
        const QString text = u"2026.11.21 16:14:35.123"_s;
        QFont font;
        font.setPixelSize(12);
        const int natural = QFontMetrics(font).horizontalAdvance(text);
        QCOMPARE(FittingDelegate::fitted(font, text, natural), font);

        const QFont narrowed = FittingDelegate::fitted(font, text, natural * 8 / 10);
        QCOMPARE(narrowed.pixelSize(), 12);
        const int width = QFontMetrics(narrowed).horizontalAdvance(text);
        QVERIFY2(
            width <= natural * 8 / 10 && width > natural * 6 / 10, QByteArray::number(width).constData());

        QVERIFY(QFontMetrics(FittingDelegate::fitted(font, text, 1)).horizontalAdvance(text) > natural / 2);
    }

    void aWideFontCutsNoTime()
    {
        const QString example = u"2026.11.21 16:14:35.123"_s;
        LogList list(LogList::Clock::Milliseconds);
        WatchingStyle style(example.size());
        list.setStyle(&style);
        QFont font = list.font();
        for (int size = 8; QFontMetrics(font).horizontalAdvance(example) < 150; ++size)
            font.setPixelSize(size);
        list.setFont(font);
        list.resize(400, 120);
        list.show();
        list.append(u"Trade"_s, u"Order placed"_s);
        QTRY_COMPARE(style.painted.text.size(), example.size());

        const QRect room = style.subElementRect(QStyle::SE_ItemViewItemText, &style.painted, &list);
        const int margins = 2 * (style.pixelMetric(QStyle::PM_FocusFrameHMargin, &style.painted, &list) + 1);
        QCOMPARE(style.painted.rect.width(), 140);
        const int width = QFontMetrics(style.painted.font).horizontalAdvance(style.painted.text);
        QVERIFY2(width <= room.width() - margins, QByteArray::number(width).constData());
    }

    void newestRowIsInSightAfterTheTurn()
    {
        LogList list(LogList::Clock::Seconds);
        showWithManyRows(list);
        list.append(u"s"_s, u"one more"_s);
        QTRY_VERIFY(newestIsInSight(list));
        QCOMPARE(newestText(list), u"one more"_s);
    }

    void scrollsBackToTheNewestRow()
    {
        LogList list(LogList::Clock::Seconds);
        showWithManyRows(list);
        list.scrollToTop();
        QVERIFY(!newestIsInSight(list));
        list.append(u"s"_s, u"news"_s);
        QTRY_VERIFY(newestIsInSight(list));
    }

    void rowsAddedWhileHiddenAreInSightWhenShown()
    {
        LogList list(LogList::Clock::Seconds);
        list.resize(400, 120);
        for (int i = 0; i < 200; ++i)
            list.append(u"s"_s, QString::number(i));
        list.show();
        QTRY_VERIFY(newestIsInSight(list));
        list.hide();
        for (int i = 0; i < 200; ++i)
            list.append(u"s"_s, QString::number(i));
        list.show();
        QTRY_VERIFY(newestIsInSight(list));
        QCOMPARE(list.topLevelItemCount(), 400);
    }

    void manyRowsInOneTurnAreLaidOutOnce()
    {
        LogList list(LogList::Clock::Seconds);
        auto* delegate = new CountingDelegate(&list);
        list.setItemDelegate(delegate);
        list.resize(400, 120);
        list.show();
        list.append(u"s"_s, u"first"_s);
        QTRY_VERIFY(newestIsInSight(list));
        delegate->m_asked = 0;
        list.append(u"s"_s, u"second"_s);
        QTRY_VERIFY(newestIsInSight(list));
        const int once = delegate->m_asked;
        QVERIFY(once > 0);
        delegate->m_asked = 0;
        for (int i = 0; i < 1000; ++i)
            list.append(u"s"_s, u"more"_s);
        QTRY_VERIFY(newestIsInSight(list));
        QVERIFY2(delegate->m_asked < 50 * once, QByteArray::number(delegate->m_asked).constData());
    }

    void aListThatNobodySeesIsNotLaidOut()
    {
        LogList list(LogList::Clock::Seconds);
        auto* delegate = new CountingDelegate(&list);
        list.setItemDelegate(delegate);
        showWithManyRows(list);
        list.hide();
        delegate->m_asked = 0;
        const auto changeLook = [&list](int letters) {
            QFont font = list.font();
            font.setPixelSize(letters);
            list.setFont(font);
            QEvent style(QEvent::StyleChange);
            QCoreApplication::sendEvent(&list, &style);
            QCoreApplication::processEvents();
        };
        changeLook(17);
        QCOMPARE(delegate->m_asked, 0);
        list.show();
        QTRY_VERIFY(list.visualItemRect(list.topLevelItem(0)).height() >= QFontMetrics(list.font()).height());
        QVERIFY(delegate->m_asked > 0);

        // What somebody reads stays in its place: a new look is no news.
        list.scrollToTop();
        list.hide();
        changeLook(18);
        list.show();
        QCoreApplication::processEvents();
        QCOMPARE(list.verticalScrollBar()->value(), 0);
        QCOMPARE(list.visualItemRect(list.topLevelItem(0)).top(), 0);
    }

    void aRowTakesLittleMemory()
    {
#ifdef __SANITIZE_ADDRESS__
        QSKIP("the sanitizer replaces the allocator that is measured here");
#endif
        constexpr int rows = 20000;
        LogList list(LogList::Clock::Milliseconds);
        list.resize(400, 120);
        list.show();
        list.append(u"Trade"_s, u"warm up"_s);
        QTRY_VERIFY(newestIsInSight(list));
        const size_t before = mallinfo2().uordblks;
        for (int i = 0; i < rows; ++i)
            list.append(u"Trade"_s, u"Order placed: buy 0.10 EURUSD at 1.07123, number %1"_s.arg(i));
        QTRY_VERIFY(newestIsInSight(list));
        QCOMPARE(list.topLevelItemCount(), rows + 1); // nothing is ever dropped
        const size_t each = (mallinfo2().uordblks - before) / rows;
        QVERIFY2(each <= 700, QByteArray::number(qulonglong(each)).constData());
        QVERIFY(each > 100);
    }
};

TAVORAN_TEST(TestLogList)
#include "tst_LogList.moc"
