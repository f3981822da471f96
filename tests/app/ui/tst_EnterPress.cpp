#include "app/ui/EnterPress.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QDialog>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

/// A window or a dialog with one of each kind that can be pressed.
template <typename Window> class Board final : public Window {
public:
    Board()
    {
        auto* column = new QVBoxLayout(this);
        for (QAbstractButton* button : std::initializer_list<QAbstractButton*>{&push, &tool, &box}) {
            button->setFocusPolicy(Qt::StrongFocus);
            column->addWidget(button);
        }
        this->show();
        this->activateWindow();
    }

    QPushButton push{u"Push"_s};
    QToolButton tool;
    QCheckBox box{u"Box"_s};
};

} // namespace

class tst_EnterPress final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void enter_presses_the_button_that_has_the_focus_once_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<bool>("tool");
        QTest::newRow("return, push button") << Qt::Key_Return << false;
        QTest::newRow("enter, push button") << Qt::Key_Enter << false;
        QTest::newRow("return, tool button") << Qt::Key_Return << true;
        QTest::newRow("enter, tool button") << Qt::Key_Enter << true;
    }
    void enter_presses_the_button_that_has_the_focus_once()
    {
        QFETCH(const Qt::Key, key);
        QFETCH(const bool, tool);
        const EnterPress enter(*qApp);
        Board<QWidget> board;
        QVERIFY(hands::arriveAt(&board));
        QAbstractButton& button = tool ? static_cast<QAbstractButton&>(board.tool) : board.push;
        button.setFocus();
        const QSignalSpy clicks(&button, &QAbstractButton::clicked);
        QTest::keyPress(&button, key, key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
        for (int again = 0; again < 3; ++again)
            hands::hold(key);
        QTest::keyRelease(&button, key);
        QCOMPARE(clicks.size(), 1);
        hands::press(key);
        QCOMPARE(clicks.size(), 2);
    }

    void enter_with_another_key_held_presses_nothing()
    {
        const EnterPress enter(*qApp);
        Board<QWidget> board;
        QVERIFY(hands::arriveAt(&board));
        board.push.setFocus();
        const QSignalSpy clicks(&board.push, &QAbstractButton::clicked);
        for (const Qt::KeyboardModifier with :
            {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier})
            QTest::keyClick(&board.push, Qt::Key_Return, with);
        QCOMPARE(clicks.size(), 0);
    }

    void a_check_box_is_left_to_the_space_bar()
    {
        const EnterPress enter(*qApp);
        Board<QWidget> board;
        QVERIFY(hands::arriveAt(&board));
        board.box.setFocus();
        hands::press(Qt::Key_Return);
        QVERIFY(!board.box.isChecked());
        hands::press(Qt::Key_Space);
        QVERIFY(board.box.isChecked());
    }

    void the_enter_that_has_opened_a_dialog_does_nothing_in_it()
    {
        const EnterPress enter(*qApp);
        Board<QWidget> board;
        QVERIFY(hands::arriveAt(&board));
        QDialog dialog(&board);
        auto* accept = new QPushButton(&dialog);
        connect(accept, &QPushButton::clicked, &dialog, &QDialog::accept);
        connect(&board.push, &QPushButton::clicked, &dialog, &QDialog::open);
        board.push.setFocus();
        QTest::keyPress(&board.push, Qt::Key_Return);
        QVERIFY(hands::arriveAt(&dialog));
        for (int again = 0; again < 3; ++again) {
            hands::hold(Qt::Key_Return);
            QVERIFY(dialog.isVisible());
        }
        QTest::keyRelease(accept, Qt::Key_Return);
        hands::press(Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    }

    void in_a_dialog_enter_presses_what_qt_says()
    {
        const EnterPress enter(*qApp);
        Board<QDialog> dialog;
        dialog.push.setDefault(true);
        QVERIFY(hands::arriveAt(&dialog));
        const QSignalSpy pushes(&dialog.push, &QAbstractButton::clicked);
        const QSignalSpy tools(&dialog.tool, &QAbstractButton::clicked);
        dialog.push.setFocus();
        hands::press(Qt::Key_Return);
        QCOMPARE(pushes.size(), 1);
        dialog.tool.setFocus();
        hands::press(Qt::Key_Return);
        QCOMPARE(pushes.size(), 2);
        QCOMPARE(tools.size(), 0);
    }
};

TAVORAN_TEST(tst_EnterPress)
#include "tst_EnterPress.moc"
