#include "ModifyDeskFixture.h"
#include "OrderDeskFixture.h"
#include "support/ReaderEars.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::Desk;
using fixtures::ModifyDesk;

namespace {

QAccessibleInterface& accessible(QWidget* widget)
{
    return *QAccessible::queryAccessibleInterface(widget);
}

QString description(QWidget* widget)
{
    return accessible(widget).text(QAccessible::Description);
}

} // namespace

class TestOrderDialogSpeech final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_price_display_reads_the_quote_of_its_symbol()
    {
        const Desk desk;
        QCOMPARE(accessible(desk.prices()).role(), QAccessible::StaticText);
        QCOMPARE(accessible(desk.prices()).text(QAccessible::Name), u"Prices of EURUSD"_s);
        QCOMPARE(description(desk.prices()), u"No prices yet"_s);
        desk.dialog->onPrices(records::prices({{"EURUSD", 1.1, 1.2}}));
        QCOMPARE(description(desk.prices()), u"Bid 1.10000, ask 1.20000"_s);
        QCOMPARE(accessible(desk.prices()).text(QAccessible::Value), u"Bid 1.10000, ask 1.20000"_s);
        desk.combo("orderSymbol")->setCurrentIndex(1);
        QCOMPARE(accessible(desk.prices()).text(QAccessible::Name), u"Prices of GOLD"_s);
        QCOMPARE(description(desk.prices()), u"No prices yet"_s);
    }

    void the_tick_chart_reads_the_last_quote_and_its_range()
    {
        Desk desk;
        QCOMPARE(accessible(desk.ticks()).role(), QAccessible::Chart);
        QCOMPARE(accessible(desk.ticks()).text(QAccessible::Name), u"Tick chart EURUSD"_s);
        QCOMPARE(description(desk.ticks()), u"No prices yet"_s);
        desk.quote("EURUSD", 1.3, 1.4);
        desk.quote("EURUSD", 1.0, 1.1);
        desk.quote("EURUSD", 1.1, 1.2);
        QCOMPARE(description(desk.ticks()), u"Bid 1.10000, ask 1.20000, lowest 1.00000, highest 1.40000"_s);
        desk.combo("orderSymbol")->setCurrentIndex(1);
        QCOMPARE(accessible(desk.ticks()).text(QAccessible::Name), u"Tick chart GOLD"_s);
        QCOMPARE(description(desk.ticks()), u"No prices yet"_s);
        desk.quote("GOLD", 2000, 2001);
        QCOMPARE(description(desk.ticks()), u"Bid 2000.00, ask 2001.00, lowest 2000.00, highest 2001.00"_s);
    }

    void old_prices_are_read_as_such()
    {
        Desk desk;
        desk.quote("EURUSD", 1.1, 1.2);
        Q_EMIT desk.feed.disconnected(1);
        QCOMPARE(description(desk.prices()), u"Disconnected; last bid 1.10000, ask 1.20000"_s);
        QCOMPARE(description(desk.ticks()),
            u"Disconnected; last bid 1.10000, ask 1.20000, lowest 1.10000, highest 1.20000"_s);
        desk.quote("EURUSD", 1.1, 1.2);
        QCOMPARE(description(desk.ticks()), u"Bid 1.10000, ask 1.20000, lowest 1.10000, highest 1.20000"_s);
    }

    void quotes_are_told_together_and_then_a_second_passes()
    {
        Desk desk;
        const ReaderEars ears;
        for (int i = 0; i < 5; ++i)
            desk.quote("EURUSD", 1.1 + i * 0.01, 1.2);
        const QStringList both{u"Prices of EURUSD"_s, u"Tick chart EURUSD"_s};
        QTRY_COMPARE(ears.names(QAccessible::DescriptionChanged), both);
        desk.quote("EURUSD", 1.11, 1.2);
        QCoreApplication::processEvents();
        QCOMPARE(ears.names(QAccessible::DescriptionChanged), both);
    }

    void nothing_is_told_without_a_reader()
    {
        Desk desk;
        desk.quote("EURUSD", 1.1, 1.2);
        const ReaderEars ears;
        QCoreApplication::processEvents();
        QCOMPARE(ears.heard().size(), 0);
    }

    void why_an_order_was_not_placed_is_announced()
    {
        Desk desk;
        const ReaderEars ears;
        desk.click(u"Limit Order"_s);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QCOMPARE(ears.names(QAccessible::Alert), QStringList(u"Please enter a valid trigger price."_s));
        desk.server.on("POST", fixtures::placePath, StubAnswer::message(u"Market closed"_s, 400));
        desk.click(u"Market Execution"_s);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_COMPARE(ears.names(QAccessible::Alert).mid(1), QStringList(u"Market closed"_s));
    }

    void why_levels_were_not_changed_is_announced()
    {
        ModifyDesk desk;
        const ReaderEars ears;
        desk.server.on("PUT", fixtures::modifyPath, StubAnswer::message(u"Too close"_s, 400));
        desk.press();
        QTRY_COMPARE(ears.names(QAccessible::Alert), QStringList(u"Too close"_s));
    }
};

TAVORAN_TEST(TestOrderDialogSpeech)
#include "tst_OrderDialogSpeech.moc"
