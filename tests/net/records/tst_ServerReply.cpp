#include "net/records/ServerReply.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

using namespace fixtures;
using namespace Qt::StringLiterals;

class TestServerReply final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_sign_in_is_a_token()
    {
        QCOMPARE(reply::token(parse(R"({"token":"t","email":"a@b"})")), u"t"_s);
        QCOMPARE(reply::token(parse(R"({"token":""})")), QString());
        QCOMPARE(reply::token(parse(R"({"message":"no"})")), std::nullopt);
        QCOMPARE(reply::email(parse(R"({"email":"a@b"})")), u"a@b"_s);
        QCOMPARE(
            reply::credentialsBody(u"a@b"_s, u"secret"_s), parse(R"({"email":"a@b","password":"secret"})"));
    }

    void a_refusal_tells_its_reason()
    {
        QCOMPARE(reply::message(parse(R"({"message":"no"})")), u"no"_s);
        QCOMPARE(reply::message(parse(R"({"message":5})")), QString());
    }

    void public_settings_name_a_server()
    {
        const QJsonObject settings{{u"terminalServerUrl"_s, u"https://x"_s}};
        QCOMPARE(reply::serverUrl({{u"settings"_s, settings}}), u"https://x"_s);
        QCOMPARE(reply::serverUrl(settings), QString());
    }
};

TAVORAN_TEST(TestServerReply)
#include "tst_ServerReply.moc"
