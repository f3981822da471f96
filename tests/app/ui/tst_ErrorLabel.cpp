#include "app/ui/ErrorLabel.h"

#include "support/ReaderEars.h"
#include "support/TestMain.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

struct Window {
    QWidget window;
    ErrorLabel* label = new ErrorLabel(&window);

    Window()
    {
        (new QVBoxLayout(&window))->addWidget(label);
        window.show();
    }
};

} // namespace

class TestErrorLabel final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void it_is_hidden_until_there_is_something_to_say()
    {
        const Window w;
        QVERIFY(w.label->isHidden());
        w.label->showError(u"<b>No</b>"_s);
        QVERIFY(w.label->isVisible());
        QCOMPARE(w.label->text(), u"<b>No</b>"_s);
        QCOMPARE(w.label->textFormat(), Qt::PlainText);
        QVERIFY(w.label->wordWrap());
        w.label->showError({});
        QVERIFY(w.label->isHidden());
    }

    void readers_know_it_for_a_notification_with_its_text()
    {
        const Window w;
        w.label->showError(u"Refused"_s);
        const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(w.label);
        QCOMPARE(accessible->role(), QAccessible::Notification);
        QCOMPARE(accessible->text(QAccessible::Name), u"Refused"_s);
        QCOMPARE(accessible->rect().size(), w.label->size());
    }

    void each_error_is_announced_once_and_its_end_is_not()
    {
        const Window w;
        const ReaderEars ears;
        w.label->showError(u"Refused"_s);
        QCOMPARE(ears.names(QAccessible::Alert), QStringList(u"Refused"_s));
        w.label->showError(u"Refused again"_s);
        QCOMPARE(ears.names(QAccessible::Alert), QStringList({u"Refused"_s, u"Refused again"_s}));
        // Those who are told of no alerts hear that something has appeared.
        QCOMPARE(ears.names(QAccessible::ObjectShow), QStringList(u"Refused again"_s));
        const qsizetype told = ears.heard().size();
        w.label->showError({});
        QCOMPARE(ears.heard().size(), told);
    }
};

TAVORAN_TEST(TestErrorLabel)
#include "tst_ErrorLabel.moc"
