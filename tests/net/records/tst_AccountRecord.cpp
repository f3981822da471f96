#include "net/records/AccountRecord.h"
#include "support/TestMain.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

class TestAccountRecord final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void its_fields_are_read()
    {
        const QJsonObject record{{u"id"_s, u"a1"_s}, {u"status"_s, u"FAILED"_s}, {u"balance"_s, u"10.50"_s}};
        QCOMPARE(account::id(record), u"a1"_s);
        QCOMPARE(account::status(record), u"FAILED"_s);
        QCOMPARE(account::balance(record), 10.5);
        QCOMPARE(account::id({{u"id"_s, 5}}), QString());
    }

    void only_an_active_account_that_is_no_wallet_is_tradable()
    {
        QVERIFY(account::isTradable({{u"status"_s, u"ACTIVE"_s}}));
        QVERIFY(account::isTradable({{u"status"_s, u"ACTIVE"_s}, {u"isWallet"_s, u"true"_s}}));
        QVERIFY(!account::isTradable({{u"status"_s, u"ACTIVE"_s}, {u"isWallet"_s, true}}));
        QVERIFY(!account::isTradable({{u"status"_s, u"active"_s}}));
        QVERIFY(!account::isTradable({}));
    }

    void labels_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("label");
        const auto row = [](const char* name, const QByteArray& json, const QString& label) {
            QTest::newRow(name) << json << label;
        };
        row("a wallet is Real whatever its type and plan",
            R"({"isWallet":true,"type":"DEMO","Plan":{"name":"Gold"},"isFunded":true})", u"Real"_s);
        row("a demo account", R"({"type":"DEMO","Plan":{"name":"Gold"}})", u"Demo"_s);
        row("the demo type is compared exactly", R"({"type":"demo"})", u"Account — Challenge"_s);
        row("a funded account", R"({"Plan":{"name":"Gold","steps":2},"isFunded":true})", u"Gold — Funded"_s);
        row("a one-step challenge has no numbers", R"({"Plan":{"name":"Gold","steps":1},"phase":1})",
            u"Gold — Challenge"_s);
        row("phase 2 of 2", R"({"Plan":{"name":"Gold","steps":2},"phase":2})", u"Gold — Challenge 2/2"_s);
        row("phase 1 of 2", R"({"Plan":{"name":"Gold","steps":2},"phase":1})", u"Gold — Challenge 1/2"_s);
        row("the phase is capped at the steps", R"({"Plan":{"name":"Gold","steps":3},"phase":4})",
            u"Gold — Challenge 3/3"_s);
        row("no steps at all", R"({"Plan":{"name":"Gold","steps":0},"phase":2})", u"Gold — Challenge"_s);
        row("an empty record", "{}", u"Account — Challenge"_s);
        row("an empty plan name", R"({"Plan":{"name":"","steps":2}})", u"Account — Challenge 1/2"_s);
        row("wrong types read as their defaults",
            R"({"isWallet":"true","isFunded":1,"type":7,"Plan":{"name":[],"steps":"2"},"phase":"x"})",
            u"Account — Challenge"_s);
        row("a plan that is no object", R"({"Plan":"Gold"})", u"Account — Challenge"_s);
        row("a name with place markers stays as it is", R"({"Plan":{"name":"A%1B%2","steps":2}})",
            u"A%1B%2 — Challenge 1/2"_s);
        row("a long name is shown whole",
            R"({"Plan":{"name":"Two-Step Swing Challenge with Weekend Holding, News Trading and Scaling"},"isFunded":true})",
            u"Two-Step Swing Challenge with Weekend Holding, News Trading and Scaling — Funded"_s);
        row("a name with a line break is one line", R"({"Plan":{"name":"A\nB"},"isFunded":true})",
            u"A B — Funded"_s);
    }
    void labels()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, label);
        const QJsonDocument document = QJsonDocument::fromJson(json);
        QVERIFY(document.isObject());
        QCOMPARE(account::label(document.object()), label);
    }
};

TAVORAN_TEST(TestAccountRecord)
#include "tst_AccountRecord.moc"
