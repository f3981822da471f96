#include "orders/OrderIcons.h"
#include "support/IconSheet.h"
#include "support/PictureCheck.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

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

    void icons_look_as_stored()
    {
        QList<QIcon> icons;
        for (const OrderIcon icon :
            {OrderIcon::Market, OrderIcon::Limit, OrderIcon::Stop, OrderIcon::StopLimit, OrderIcon::OneClick,
                OrderIcon::TickChart, OrderIcon::Depth, OrderIcon::Minimize})
            icons.append(orderIcon(icon));
        const pictures::PictureFolder folder(
            QStringLiteral(PICTURE_FOLDER), QStringLiteral(FAILED_PICTURE_FOLDER));
        const QString wrong = folder.check(u"order-icons"_s, pictures::iconSheet(icons));
        QVERIFY2(wrong.isEmpty(), qUtf8Printable(wrong));
    }
};

TAVORAN_TEST(tst_OrderIcons)
#include "tst_OrderIcons.moc"
