#include "orders/OrderIcons.h"
#include "support/TestMain.h"

class tst_OrderIcons final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anIconIsDrawnOnceAndThenShared()
    {
        for (const OrderIcon icon : {OrderIcon::Market, OrderIcon::StopLimit, OrderIcon::Minimize}) {
            QVERIFY(!orderIcon(icon).isNull());
            QCOMPARE(orderIcon(icon).cacheKey(), orderIcon(icon).cacheKey());
        }
        QVERIFY(orderIcon(OrderIcon::Market).cacheKey() != orderIcon(OrderIcon::Limit).cacheKey());
    }
};

TAVORAN_TEST(tst_OrderIcons)
#include "tst_OrderIcons.moc"
