#include "chart/data/AveragePalette.h"
#include "chart/window/AverageDialog.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

using namespace Qt::StringLiterals;

class tst_AverageDialog final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void asksForAPeriod()
    {
        AverageDialog dialog(20);
        dialog.show();
        QCOMPARE(dialog.windowTitle(), u"Moving Average"_s);
        QCOMPARE(dialog.labelText(), u"Period:"_s);
        const auto* box = dialog.findChild<QSpinBox*>();
        QVERIFY(box && box->isVisible());
        QCOMPARE(box->value(), 20);
        QCOMPARE(box->minimum(), 2);
        QCOMPARE(box->maximum(), 400);
        QCOMPARE(box->singleStep(), 1);
    }

    void staysBetweenItsLimits()
    {
        AverageDialog dialog(20);
        dialog.show();
        auto* box = dialog.findChild<QSpinBox*>();
        box->setValue(2);
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(dialog.intValue(), 2);
        box->setValue(400);
        QTest::keyClick(box, Qt::Key_Up);
        QCOMPARE(dialog.intValue(), 400);
    }

    void takesATypedPeriod()
    {
        AverageDialog dialog(20);
        dialog.open();
        QSignalSpy chosen(&dialog, &QInputDialog::intValueSelected);
        auto* box = dialog.findChild<QSpinBox*>();
        box->selectAll();
        QTest::keyClicks(box, u"55"_s);
        QTest::keyClick(&dialog, Qt::Key_Return);
        QCOMPARE(chosen, QList<QVariantList>{{55}});
    }

    void an_enter_that_is_still_held_from_the_list_chooses_nothing()
    {
        AverageDialog dialog(20);
        dialog.open();
        QSignalSpy chosen(&dialog, &QInputDialog::intValueSelected);
        QVERIFY(hands::arriveAt(&dialog));
        hands::hold(Qt::Key_Return);
        QVERIFY(dialog.isVisible());
        hands::hold(Qt::Key_Return);
        QVERIFY(dialog.isVisible());
        hands::press(Qt::Key_Return);
        QCOMPARE(chosen, QList<QVariantList>{{20}});
    }

    void whatIsTypedAtOnceIsThePeriod()
    {
        AverageDialog dialog(20);
        dialog.open();
        QSignalSpy chosen(&dialog, &QInputDialog::intValueSelected);
        QVERIFY(hands::arriveAt(&dialog));
        hands::type(u"55"_s);
        hands::press(Qt::Key_Return);
        QCOMPARE(chosen, QList<QVariantList>{{55}});
    }

    void tabGoesFromThePeriodToTheButtons()
    {
        AverageDialog dialog(20);
        dialog.open();
        QVERIFY(hands::arriveAt(&dialog));
        const auto* buttons = dialog.findChild<QDialogButtonBox*>();
        QCOMPARE(QApplication::focusWidget(), dialog.findChild<QSpinBox*>());
        QCOMPARE(hands::tabOrder().mid(1),
            QStringList({buttons->button(QDialogButtonBox::Ok)->text(),
                buttons->button(QDialogButtonBox::Cancel)->text()}));
    }

    void theWheelTurnsThePeriodOnlyWhileItHasTheFocus()
    {
        AverageDialog dialog(20);
        dialog.open();
        QVERIFY(hands::arriveAt(&dialog));
        auto* box = dialog.findChild<QSpinBox*>();
        box->setFocus();
        hands::turnWheel(*box, 120);
        QCOMPARE(dialog.intValue(), 21);
        hands::press(Qt::Key_Tab);
        hands::turnWheel(*box, 120);
        QCOMPARE(dialog.intValue(), 21);
        QVERIFY(!box->hasFocus());
    }

    void fiveColoursFollowEachOther()
    {
        QStringList names;
        for (int count = 0; count < 7; ++count)
            names << averageColor(count).name();
        QCOMPARE(names,
            QStringList({u"#ffd54f"_s, u"#4fc3f7"_s, u"#ba68c8"_s, u"#ff8a65"_s, u"#81c784"_s, u"#ffd54f"_s,
                u"#4fc3f7"_s}));
    }
};

TAVORAN_TEST(tst_AverageDialog)
#include "tst_AverageDialog.moc"
