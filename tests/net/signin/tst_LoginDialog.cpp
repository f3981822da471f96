#include "app/base/TerminalSettings.h"
#include "net/signin/LoginDialog.h"
#include "support/Hands.h"
#include "support/LogMessages.h"
#include "support/NamelessParts.h"
#include "support/ReaderEars.h"
#include "support/ShortSteps.h"
#include "support/StubHttpServer.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QVBoxLayout>
#include <optional>

using namespace Qt::StringLiterals;

class TestLoginDialog final : public QObject {
    Q_OBJECT

    template <typename Widget> Widget* child(const QString& name)
    {
        return m_dialog->findChild<Widget*>(name);
    }
    QLineEdit* email() { return child<QLineEdit>(u"email"_s); }
    QLineEdit* password() { return child<QLineEdit>(u"password"_s); }
    QCheckBox* remember() { return child<QCheckBox>(u"remember"_s); }
    QPushButton* loginButton() { return child<QPushButton>(u"loginButton"_s); }
    QPushButton* cancelButton() { return child<QPushButton>(u"cancelButton"_s); }
    QLabel* errorLabel() { return child<QLabel>(u"errorLabel"_s); }

    void open()
    {
        m_dialog.emplace(TerminalSettings::instance());
        m_dialog->show();
    }

    void fillAndPress()
    {
        email()->setText(u"a@b.c"_s);
        password()->setText(u"pw"_s);
        QTest::mouseClick(loginButton(), Qt::LeftButton);
        QTRY_VERIFY(posts() > 0);
    }

    int posts() const { return m_server->count("POST", "/api/auth/login"); }

    std::optional<StubHttpServer> m_server;
    std::optional<LoginDialog> m_dialog;

private Q_SLOTS:
    void init()
    {
        m_server.emplace();
        m_server->on("POST", "/api/auth/login", StubAnswer::held());
        TerminalSettings& settings = TerminalSettings::instance();
        settings.setServerUrl(m_server->url());
        settings.setRemember(true);
        settings.setToken({});
        settings.setEmail({});
    }

    void cleanup()
    {
        m_dialog.reset();
        m_server.reset();
    }

    void it_looks_as_planned()
    {
        open();
        QCOMPARE(m_dialog->windowTitle(), u"Tavoran Terminal"_s);
        QVERIFY(m_dialog->isModal());
        QCOMPARE(m_dialog->width(), 400);
        QCOMPARE(m_dialog->minimumWidth(), 400);
        QCOMPARE(m_dialog->maximumWidth(), 400);
        auto* const outer = qobject_cast<QVBoxLayout*>(m_dialog->layout());
        QVERIFY(outer);
        QCOMPARE(outer->contentsMargins(), QMargins(0, 0, 0, 16));
        QCOMPARE(outer->count(), 4);
        const QLabel* const banner = child<QLabel>(u"banner"_s);
        QCOMPARE(outer->itemAt(0)->widget(), banner);
        QCOMPARE(banner->pixmap().deviceIndependentSize(), QSizeF(400, 96));
        auto* const form = qobject_cast<QFormLayout*>(outer->itemAt(1)->layout());
        QVERIFY(form);
        QCOMPARE(form->contentsMargins(), QMargins(24, 4, 24, 0));
        QCOMPARE(form->rowCount(), 3);
        QCOMPARE(qobject_cast<QLabel*>(form->labelForField(email()))->text(), u"Login:"_s);
        QCOMPARE(qobject_cast<QLabel*>(form->labelForField(password()))->text(), u"Password:"_s);
        QCOMPARE(form->itemAt(2, QFormLayout::FieldRole)->widget(), remember());
        QCOMPARE(remember()->text(), u"Keep me signed in"_s);
        QVERIFY(!email()->placeholderText().isEmpty());
        QCOMPARE(password()->echoMode(), QLineEdit::Password);
        QCOMPARE(outer->itemAt(2)->widget(), errorLabel());
        QVERIFY(errorLabel()->wordWrap());
        QVERIFY(errorLabel()->isHidden());
        QCOMPARE(errorLabel()->styleSheet(), u"color:#ff6b6b; padding:0 24px;"_s);
        QLayout* const buttons = outer->itemAt(3)->layout();
        QVERIFY(buttons);
        QCOMPARE(buttons->contentsMargins(), QMargins(24, 4, 24, 0));
        QVERIFY(buttons->itemAt(0)->spacerItem());
        QCOMPARE(buttons->itemAt(1)->widget(), cancelButton());
        QCOMPARE(buttons->itemAt(2)->widget(), loginButton());
        QCOMPARE(cancelButton()->text(), u"Cancel"_s);
        QVERIFY(!cancelButton()->autoDefault());
        QCOMPARE(loginButton()->text(), u"Login"_s);
        QVERIFY(loginButton()->isDefault());
        QVERIFY(m_dialog->user().isEmpty());
    }

    void the_last_email_and_choice_are_filled_in()
    {
        TerminalSettings::instance().setEmail(u"last@b.c"_s);
        TerminalSettings::instance().setRemember(false);
        open();
        QCOMPARE(email()->text(), u"last@b.c"_s);
        QVERIFY(!remember()->isChecked());
        QCOMPARE(posts(), 0);
    }

    void the_first_empty_field_has_the_focus()
    {
        open();
        QCOMPARE(m_dialog->focusWidget(), email());
        TerminalSettings::instance().setEmail(u"last@b.c"_s);
        open();
        QCOMPARE(m_dialog->focusWidget(), password());
    }

    void what_is_typed_at_once_signs_in()
    {
        open();
        QVERIFY(hands::arriveAt(&*m_dialog));
        hands::type(u"a@b.c"_s);
        hands::press(Qt::Key_Tab);
        hands::type(u"pw"_s);
        hands::press(Qt::Key_Return);
        QTRY_COMPARE(posts(), 1);
        QCOMPARE(m_server->last("POST", "/api/auth/login").json().value(u"email"_s).toString(), u"a@b.c"_s);
        QCOMPARE(m_server->last("POST", "/api/auth/login").json().value(u"password"_s).toString(), u"pw"_s);

        TerminalSettings::instance().setEmail(u"last@b.c"_s);
        open();
        QVERIFY(hands::arriveAt(&*m_dialog));
        hands::type(u"secret"_s);
        hands::press(Qt::Key_Return);
        QTRY_COMPARE(posts(), 2);
        QCOMPARE(
            m_server->last("POST", "/api/auth/login").json().value(u"password"_s).toString(), u"secret"_s);
    }

    void tab_goes_down_the_fields_to_the_buttons()
    {
        open();
        QVERIFY(hands::arriveAt(&*m_dialog));
        QCOMPARE(hands::tabOrder(),
            QStringList({u"email"_s, u"password"_s, u"remember"_s, u"cancelButton"_s, u"loginButton"_s}));
    }

    void the_banner_keeps_its_place_through_every_attempt_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        const QString shortText = u"Wrong password"_s;
        const QString longText = u"no way "_s.repeated(60);
        QTest::newRow("short, then short") << shortText << shortText;
        QTest::newRow("short, then long") << shortText << longText;
        QTest::newRow("long, then short") << longText << shortText;
        QTest::newRow("long, then long") << longText << longText;
    }
    void the_banner_keeps_its_place_through_every_attempt()
    {
        QFETCH(const QString, first);
        QFETCH(const QString, second);
        const QRect place(0, 0, 400, 96);
        open();
        const QLabel* const banner = child<QLabel>(u"banner"_s);
        QCoreApplication::processEvents();
        QCOMPARE(banner->geometry(), place);
        const int quietHeight = m_dialog->height();
        QList<int> heights;
        for (const QString& text : {first, second}) {
            email()->setText(u"a@b.c"_s);
            password()->setText(u"pw"_s);
            hands::press(Qt::Key_Return);
            QTRY_COMPARE(m_server->heldCount(), 1);
            QCoreApplication::processEvents();
            QCOMPARE(banner->geometry(), place);
            QCOMPARE(m_dialog->size(), QSize(400, quietHeight));
            m_server->release(StubAnswer::message(text, 401));
            QTRY_VERIFY(errorLabel()->isVisible());
            QCoreApplication::processEvents();
            QCOMPARE(banner->geometry(), place);
            QVERIFY(errorLabel()->height() >= errorLabel()->heightForWidth(errorLabel()->width()));
            QVERIFY(m_dialog->height() > quietHeight);
            heights.append(m_dialog->height());
        }
        QCOMPARE(heights.at(0) < heights.at(1), first.size() < second.size());
        QCOMPARE(heights.at(0) > heights.at(1), first.size() > second.size());
        // The topmost line is the banner's own ground, not that of the window.
        QCOMPARE(m_dialog->grab().toImage().pixelColor(2, 0), banner->pixmap().toImage().pixelColor(2, 0));
    }

    void the_banner_keeps_its_place_in_a_taller_window()
    {
        open();
        m_dialog->resize(400, m_dialog->height() + 200);
        QCoreApplication::processEvents();
        QCOMPARE(child<QLabel>(u"banner"_s)->geometry(), QRect(0, 0, 400, 96));
    }

    void empty_fields_are_answered_without_a_request_data()
    {
        QTest::addColumn<QString>("emailText");
        QTest::addColumn<QString>("passwordText");
        QTest::newRow("both") << QString() << QString();
        QTest::newRow("email of blanks") << u" \t "_s << u"pw"_s;
        QTest::newRow("no password") << u"a@b.c"_s << QString();
    }
    void empty_fields_are_answered_without_a_request()
    {
        QFETCH(const QString, emailText);
        QFETCH(const QString, passwordText);
        open();
        email()->setText(emailText);
        password()->setText(passwordText);
        email()->setFocus();
        QTest::mouseClick(loginButton(), Qt::LeftButton);
        QCOMPARE(errorLabel()->text(), u"Please enter your login and password."_s);
        QVERIFY(errorLabel()->isVisible());
        QCOMPARE(m_dialog->focusWidget(), password());
        QCOMPARE(password()->selectedText(), passwordText);
        QVERIFY(loginButton()->isEnabled());
        QVERIFY(email()->isEnabled());
        QCOMPARE(posts(), 0);
    }

    void the_email_is_trimmed_and_the_password_sent_as_typed()
    {
        open();
        email()->setText(u"  a@b.c "_s);
        password()->setText(u"  "_s);
        QTest::mouseClick(loginButton(), Qt::LeftButton);
        QTRY_COMPARE(posts(), 1);
        const QJsonObject sent = m_server->last("POST", "/api/auth/login").json();
        QCOMPARE(sent.value(u"email"_s).toString(), u"a@b.c"_s);
        QCOMPARE(sent.value(u"password"_s).toString(), u"  "_s);
    }

    void enter_in_either_field_signs_in_data()
    {
        QTest::addColumn<QString>("field");
        QTest::newRow("email") << u"email"_s;
        QTest::newRow("password") << u"password"_s;
    }
    void enter_in_either_field_signs_in()
    {
        QFETCH(const QString, field);
        open();
        email()->setText(u"a@b.c"_s);
        password()->setText(u"pw"_s);
        QTest::keyClick(child<QLineEdit>(field), Qt::Key_Return);
        QTRY_COMPARE(posts(), 1);
    }

    void while_busy_only_cancel_works()
    {
        open();
        fillAndPress();
        QVERIFY(!email()->isEnabled());
        QVERIFY(!password()->isEnabled());
        QVERIFY(!remember()->isEnabled());
        QVERIFY(!loginButton()->isEnabled());
        QVERIFY(cancelButton()->isEnabled());
        QCOMPARE(loginButton()->text(), u"Connecting..."_s);
        QTest::mouseClick(loginButton(), Qt::LeftButton);
        QTest::keyClick(&*m_dialog, Qt::Key_Return);
        m_server->release(StubAnswer::message(u"no"_s, 401));
        QTRY_VERIFY(loginButton()->isEnabled());
        QCOMPARE(loginButton()->text(), u"Login"_s);
        QVERIFY(email()->isEnabled());
        QVERIFY(password()->isEnabled());
        QVERIFY(remember()->isEnabled());
        QCOMPARE(posts(), 1);
    }

    void a_success_ends_accepted_with_the_answer()
    {
        open();
        const QSignalSpy finished(&*m_dialog, &QDialog::finished);
        fillAndPress();
        m_server->release(StubAnswer::json(R"({"token":"token-1234","email":"x@y.z"})"));
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
        QCOMPARE(m_dialog->user().value(u"email"_s).toString(), u"x@y.z"_s);
        QCOMPARE(TerminalSettings::instance().token(), u"token-1234"_s);
        QCOMPARE(TerminalSettings::instance().email(), u"a@b.c"_s);
    }

    void a_failure_shows_its_text_and_asks_for_the_password_again()
    {
        open();
        fillAndPress();
        m_server->release(StubAnswer::message(u"Wrong password"_s, 401));
        QTRY_VERIFY(errorLabel()->isVisible());
        QCOMPARE(errorLabel()->text(), u"Wrong password"_s);
        QCOMPARE(m_dialog->focusWidget(), password());
        QVERIFY(password()->hasSelectedText());
        QCOMPARE(password()->selectedText().size(), 2);
        QCOMPARE(email()->text(), u"a@b.c"_s);
        QVERIFY(m_dialog->isVisible());
        QVERIFY(m_dialog->user().isEmpty());
    }

    void every_failure_stands_in_the_log()
    {
        QFile::remove(logFilePath());
        open();
        QTest::mouseClick(loginButton(), Qt::LeftButton);
        fillAndPress();
        m_server->release(StubAnswer::message(u"Wrong password"_s, 401));
        QTRY_COMPARE(errorLabel()->text(), u"Wrong password"_s);
        QCOMPARE(fixtures::logMessages().filter(u"[Auth]"_s),
            QStringList({u"[Auth] Please enter your login and password."_s, u"[Auth] Wrong password"_s}));
    }

    void server_markup_is_shown_as_text()
    {
        open();
        QCOMPARE(errorLabel()->textFormat(), Qt::PlainText);
        fillAndPress();
        m_server->release(StubAnswer::message(u"<img src='/etc/passwd'>&amp; %1"_s, 400));
        QTRY_COMPARE(errorLabel()->text(), u"<img src='/etc/passwd'>&amp; %1"_s);
    }

    void an_endless_message_leaves_the_buttons_on_the_screen()
    {
        open();
        fillAndPress();
        m_server->release(StubAnswer::message(u"no way "_s.repeated(100000), 400));
        QTRY_VERIFY(errorLabel()->isVisible());
        QCOMPARE(errorLabel()->text().size(), 301);
        QTRY_VERIFY(errorLabel()->height() >= errorLabel()->heightForWidth(errorLabel()->width()));
        QVERIFY2(m_dialog->height() < 700, qPrintable(QString::number(m_dialog->height())));
        QCOMPARE(m_dialog->width(), 400);
        QVERIFY(m_dialog->rect().contains(loginButton()->geometry()));
    }

    void a_new_attempt_hides_the_last_error()
    {
        open();
        QTest::mouseClick(loginButton(), Qt::LeftButton);
        QVERIFY(errorLabel()->isVisible());
        fillAndPress();
        QVERIFY(errorLabel()->isHidden());
    }

    // A server locks out who tries too often.
    void enter_that_is_held_tries_once()
    {
        open();
        fillAndPress();
        m_server->release(StubAnswer::message(u"Wrong password"_s, 401));
        QTRY_VERIFY(errorLabel()->isVisible());
        QVERIFY(hands::arriveAt(&*m_dialog));
        hands::hold(Qt::Key_Return);
        hands::hold(Qt::Key_Enter);
        QVERIFY(loginButton()->isEnabled());
        QCOMPARE(posts(), 1);
        hands::press(Qt::Key_Return);
        QTRY_COMPARE(posts(), 2);
    }

    void broken_answers_end_in_the_error_label_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::newRow("200 without a token") << "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"_ba;
        QTest::newRow("html error") << "HTTP/1.1 502 Bad\r\nContent-Length: 6\r\n\r\n<html>"_ba;
        QTest::newRow("no HTTP") << "hello\r\n\r\n"_ba;
        QTest::newRow("nothing") << QByteArray();
    }
    void broken_answers_end_in_the_error_label()
    {
        QFETCH(const QByteArray, reply);
        open();
        fillAndPress();
        m_server->release(StubAnswer::raw(reply));
        QTRY_VERIFY(errorLabel()->isVisible());
        QVERIFY(!errorLabel()->text().isEmpty());
        QVERIFY(loginButton()->isEnabled());
        QCOMPARE(posts(), 1);
    }

    void unchecking_keep_me_signed_in_removes_the_stored_token()
    {
        TerminalSettings::instance().setToken(u"old-token"_s);
        open();
        remember()->setChecked(false);
        fillAndPress();
        QVERIFY(!TerminalSettings::instance().remember());
        m_server->release(StubAnswer::json(R"({"token":"new-token"})"));
        QTRY_COMPARE(TerminalSettings::instance().token(), u"new-token"_s);
        TerminalSettings::instance().sync();
        const QSettings stored(u"Tavoran"_s, u"Terminal"_s);
        QVERIFY(!stored.contains(u"auth/token"_s));
        QCOMPARE(stored.value(u"auth/remember"_s).toBool(), false);
    }

    void checking_keep_me_signed_in_stores_the_token()
    {
        TerminalSettings::instance().setRemember(false);
        open();
        remember()->setChecked(true);
        fillAndPress();
        m_server->release(StubAnswer::json(R"({"token":"new-token"})"));
        QTRY_COMPARE(TerminalSettings::instance().token(), u"new-token"_s);
        TerminalSettings::instance().sync();
        const QSettings stored(u"Tavoran"_s, u"Terminal"_s);
        QCOMPARE(stored.value(u"auth/token"_s).toString(), u"new-token"_s);
    }

    void leaving_during_a_request_ends_rejected_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("cancel") << u"cancel"_s;
        QTest::newRow("close") << u"close"_s;
        QTest::newRow("escape") << u"escape"_s;
    }
    void leaving_during_a_request_ends_rejected()
    {
        QFETCH(const QString, how);
        open();
        const QSignalSpy finished(&*m_dialog, &QDialog::finished);
        fillAndPress();
        if (how == u"cancel"_s)
            QTest::mouseClick(cancelButton(), Qt::LeftButton);
        else if (how == u"close"_s)
            m_dialog->close();
        else
            QTest::keyClick(&*m_dialog, Qt::Key_Escape);
        QCOMPARE(finished.size(), 1);
        QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
        m_dialog.reset();
        QTRY_COMPARE(m_server->heldCount(), 0);
        QVERIFY(TerminalSettings::instance().token().isEmpty());
    }

    void an_answer_that_comes_after_leaving_signs_nobody_in()
    {
        open();
        fillAndPress();
        QTest::mouseClick(cancelButton(), Qt::LeftButton);
        m_server->release(StubAnswer::json(R"({"token":"new-token"})"));
        // Once the server has seen the connection go, no answer can be on its way any more.
        QTRY_COMPARE(m_server->connectionCount(), 0);
        QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
        QVERIFY(m_dialog->user().isEmpty());
        QVERIFY(TerminalSettings::instance().token().isEmpty());

        m_dialog->show();
        fillAndPress();
        QTRY_COMPARE(m_server->heldCount(), 1);
        m_server->release(StubAnswer::json(R"({"token":"second-token"})"));
        QTRY_COMPARE(m_dialog->result(), int(QDialog::Accepted));
    }

    void an_error_is_announced_each_time()
    {
        ReaderEars ears;
        open();
        QVERIFY(ears.names(QAccessible::Alert).isEmpty());
        for (int tries = 1; tries <= 2; ++tries) {
            QTest::mouseClick(loginButton(), Qt::LeftButton);
            QCOMPARE(ears.names(QAccessible::Alert),
                QStringList(tries, u"Please enter your login and password."_s));
        }
        m_server->on("POST", "/api/auth/login", StubAnswer::message(u"Wrong password"_s, 401));
        fillAndPress();
        QTRY_COMPARE(ears.names(QAccessible::Alert).mid(2), QStringList(u"Wrong password"_s));
    }

    void every_part_has_a_name()
    {
        open();
        const QStringList nameless = NamelessParts::find();
        QVERIFY2(nameless.isEmpty(), qPrintable(nameless.join(u'\n')));
        QVERIFY(!child<QLabel>(u"banner"_s)->accessibleName().isEmpty());
    }
};

TAVORAN_TEST(TestLoginDialog)
#include "tst_LoginDialog.moc"
