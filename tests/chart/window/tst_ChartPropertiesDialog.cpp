#include "app/ui/Theme.h"
#include "chart/ChartWindowFixture.h"
#include "chart/data/ChartColorRoles.h"
#include "chart/window/ChartPropertiesDialog.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QColorDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

#include <array>

using namespace Qt::StringLiterals;
using fixtures::ServedChart;

class tst_ChartPropertiesDialog final : public QObject {
    Q_OBJECT

    static ChartPropertiesDialog& open(const ServedChart& served)
    {
        served.window->showProperties();
        return *served.window->findChild<ChartPropertiesDialog*>();
    }

    /// In the order of their rows.
    static QList<QPushButton*> swatches(const QDialog& dialog)
    {
        QList<QPushButton*> found;
        const auto* form = dialog.findChild<QFormLayout*>();
        for (int row = 0; row < form->rowCount(); ++row) {
            if (auto* swatch
                = qobject_cast<QPushButton*>(form->itemAt(row, QFormLayout::FieldRole)->widget()))
                found.append(swatch);
        }
        return found;
    }

    static QPushButton* button(const QDialog& dialog, const QString& text)
    {
        const QList<QPushButton*> buttons = dialog.findChildren<QPushButton*>();
        const auto found = std::find_if(buttons.cbegin(), buttons.cend(),
            [&text](const QPushButton* candidate) { return candidate->text() == text; });
        return found == buttons.cend() ? nullptr : *found;
    }

private Q_SLOTS:
    void init()
    {
        setTheme(false);
        applyTheme(*qApp);
    }

    void isTitledAfterTheSymbol()
    {
        const ServedChart served(u"EUR%1\nUSD"_s);
        served.show();
        QCOMPARE(open(served).windowTitle(), u"Chart Properties — EUR%1 USD"_s);
    }

    void hasOneRowForEachColour()
    {
        const ServedChart served;
        served.show();
        const auto* form = open(served).findChild<QFormLayout*>();
        QStringList labels;
        for (int row = 0; row < form->rowCount(); ++row)
            labels << qobject_cast<QLabel*>(form->itemAt(row, QFormLayout::LabelRole)->widget())->text();
        QCOMPARE(labels,
            QStringList({u"Background"_s, u"Grid"_s, u"Axis text"_s, u"Up / bull"_s, u"Down / bear"_s,
                u"Line chart"_s, u"Volume"_s, u"Presets:"_s}));
    }

    void theLastRowHoldsThePresets()
    {
        const ServedChart served;
        served.show();
        const auto* form = open(served).findChild<QFormLayout*>();
        const QLayout* row = form->itemAt(form->rowCount() - 1, QFormLayout::FieldRole)->layout();
        QVERIFY(row);
        QStringList texts;
        for (int i = 0; i < row->count(); ++i)
            texts << qobject_cast<QPushButton*>(row->itemAt(i)->widget())->text();
        QCOMPARE(texts, QStringList({u"Qlon Green/Black"_s, u"Black/White"_s}));
    }

    void endsWithOkAndCancel()
    {
        const ServedChart served;
        served.show();
        const ChartPropertiesDialog& dialog = open(served);
        const auto* buttons = dialog.findChild<QDialogButtonBox*>();
        QCOMPARE(buttons->standardButtons(), QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        QCOMPARE(dialog.layout()->itemAt(dialog.layout()->count() - 1)->widget(), buttons);
    }

    void swatchesShowTheChartsColours()
    {
        const ServedChart served;
        ChartColors colors;
        colors.grid = QColor(1, 2, 3);
        served.chart().setColors(colors);
        served.show();
        const QList<QPushButton*> all = swatches(open(served));
        QCOMPARE(all.size(), 7);
        QCOMPARE(all.at(0)->styleSheet(), u"background:#000000;border:1px solid #888;"_s);
        QCOMPARE(all.at(1)->styleSheet(), u"background:#010203;border:1px solid #888;"_s);
        QCOMPARE(all.at(6)->styleSheet(), u"background:#2f6b3f;border:1px solid #888;"_s);
        QCOMPARE(all.at(1)->accessibleName(), u"Grid"_s);
        QCOMPARE(all.at(1)->accessibleDescription(), u"#010203"_s);
        QCOMPARE(all.at(1)->grab().toImage().pixelColor(30, 10), QColor(1, 2, 3));
    }

    void swatchesKeepTheirSizeInEveryTheme_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light") << false;
        QTest::newRow("dark") << true;
    }
    void swatchesKeepTheirSizeInEveryTheme()
    {
        QFETCH(bool, dark);
        setTheme(dark);
        applyTheme(*qApp);
        const ServedChart served;
        served.show();
        ChartPropertiesDialog& dialog = open(served);
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        for (const QPushButton* swatch : swatches(dialog))
            QCOMPARE(swatch->size(), QSize(60, 20));
        QTest::mouseClick(button(dialog, u"Black/White"_s), Qt::LeftButton);
        setTheme(!dark);
        applyTheme(*qApp);
        QCoreApplication::processEvents();
        for (const QPushButton* swatch : swatches(dialog))
            QCOMPARE(swatch->size(), QSize(60, 20));
    }

    void presetsReplaceAllColours()
    {
        const ServedChart served;
        ChartColors colors;
        colors.up = Qt::red;
        served.chart().setColors(colors);
        served.show();
        const ChartPropertiesDialog& dialog = open(served);
        const auto names = [&dialog] {
            QStringList found;
            for (const QPushButton* swatch : swatches(dialog))
                found << swatch->styleSheet().mid(11, 7);
            return found;
        };
        QTest::mouseClick(button(dialog, u"Black/White"_s), Qt::LeftButton);
        QCOMPARE(names(),
            QStringList({u"#ffffff"_s, u"#d6d6d6"_s, u"#333333"_s, u"#000000"_s, u"#000000"_s, u"#1f6fb2"_s,
                u"#c8d8c8"_s}));
        QTest::mouseClick(button(dialog, u"Qlon Green/Black"_s), Qt::LeftButton);
        QCOMPARE(names(),
            QStringList({u"#000000"_s, u"#232323"_s, u"#c0c0c0"_s, u"#00e600"_s, u"#ffffff"_s, u"#4fc3f7"_s,
                u"#2f6b3f"_s}));
        QCOMPARE(dialog.colors(), ChartColors());
    }

    void theChooserIsNotStyledLikeItsSwatch()
    {
        const ServedChart served;
        served.show();
        const ChartPropertiesDialog& dialog = open(served);
        QTest::mouseClick(swatches(dialog).at(3), Qt::LeftButton);
        QCOMPARE(dialog.findChild<QColorDialog*>()->parentWidget(), &dialog);
    }

    void aColourIsChosen_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QColor>("before");
        QTest::addColumn<QString>("key");
        QTest::newRow("bg") << 0 << u"Background"_s << QColor(u"#000000"_s) << u"bg"_s;
        QTest::newRow("grid") << 1 << u"Grid"_s << QColor(u"#232323"_s) << u"grid"_s;
        QTest::newRow("axis") << 2 << u"Axis text"_s << QColor(u"#c0c0c0"_s) << u"axis"_s;
        QTest::newRow("up") << 3 << u"Up / bull"_s << QColor(u"#00e600"_s) << u"up"_s;
        QTest::newRow("down") << 4 << u"Down / bear"_s << QColor(u"#ffffff"_s) << u"down"_s;
        QTest::newRow("line") << 5 << u"Line chart"_s << QColor(u"#4fc3f7"_s) << u"line"_s;
        QTest::newRow("vol") << 6 << u"Volume"_s << QColor(u"#2f6b3f"_s) << u"vol"_s;
    }
    void aColourIsChosen()
    {
        QFETCH(int, row);
        QFETCH(QString, title);
        QFETCH(QColor, before);
        QFETCH(QString, key);
        const ServedChart served;
        served.show();
        QJsonObject expected = served.window->saveState().value(u"colors"_s).toObject();
        expected[key] = u"#123456"_s;
        const ChartPropertiesDialog& dialog = open(served);
        QTest::mouseClick(swatches(dialog).at(row), Qt::LeftButton);
        auto* chooser = dialog.findChild<QColorDialog*>();
        QVERIFY(chooser && chooser->isVisible());
        QCOMPARE(chooser->windowTitle(), title);
        QCOMPARE(chooser->currentColor(), before);
        chooser->setCurrentColor(QColor(0x12, 0x34, 0x56));
        QTest::keyClick(chooser, Qt::Key_Return);
        QCOMPARE(swatches(dialog).at(row)->styleSheet(), u"background:#123456;border:1px solid #888;"_s);
        QVERIFY(dialog.isVisible());
        QTRY_VERIFY(!dialog.findChild<QColorDialog*>());
        const auto* buttons = dialog.findChild<QDialogButtonBox*>();
        QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        QCOMPARE(served.window->saveState().value(u"colors"_s).toObject(), expected);
    }

    void aCancelledChoiceChangesNothing()
    {
        const ServedChart served;
        served.show();
        const ChartPropertiesDialog& dialog = open(served);
        QTest::mouseClick(swatches(dialog).at(0), Qt::LeftButton);
        auto* chooser = dialog.findChild<QColorDialog*>();
        QVERIFY(chooser);
        chooser->setCurrentColor(Qt::red);
        QTest::keyClick(chooser, Qt::Key_Escape);
        QCOMPARE(dialog.colors(), ChartColors());
        QCOMPARE(swatches(dialog).at(0)->styleSheet(), u"background:#000000;border:1px solid #888;"_s);
    }

    void coloursAreAppliedOnOkOnly()
    {
        const ServedChart served;
        served.show();
        const QPointer<ChartPropertiesDialog> dialog(&open(served));
        QTest::mouseClick(button(*dialog, u"Black/White"_s), Qt::LeftButton);
        QCOMPARE(served.chart().colors(), ChartColors());
        const auto* buttons = dialog->findChild<QDialogButtonBox*>();
        QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        QCOMPARE(served.chart().colors(), blackOnWhiteColors());
        QTRY_VERIFY(!dialog);
    }

    void enterAcceptsWhateverHasTheFocus()
    {
        const ServedChart served;
        ChartColors colors;
        colors.up = Qt::red;
        served.chart().setColors(colors);
        served.show();
        for (int i = 0; i < 3; ++i) {
            const QPointer<ChartPropertiesDialog> dialog(&open(served));
            QVERIFY(QTest::qWaitForWindowExposed(dialog));
            const std::array buttons{swatches(*dialog).at(0), button(*dialog, u"Qlon Green/Black"_s),
                button(*dialog, u"Black/White"_s)};
            buttons.at(static_cast<std::size_t>(i))->setFocus();
            QTest::keyClick(dialog, Qt::Key_Return);
            QVERIFY(!dialog->isVisible());
            QCOMPARE(served.chart().colors(), colors);
            QTRY_VERIFY(!dialog);
        }
    }

    void theKeyboardAloneChoosesTheFirstColour()
    {
        const ServedChart served;
        served.show();
        ChartPropertiesDialog& dialog = open(served);
        QVERIFY(hands::arriveAt(&dialog));
        hands::press(Qt::Key_Space);
        const auto* chooser = dialog.findChild<QColorDialog*>();
        QVERIFY(chooser);
        QCOMPARE(chooser->windowTitle(), u"Background"_s);
    }

    void tabGoesDownTheColoursToThePresetsAndTheButtons()
    {
        const ServedChart served;
        served.show();
        ChartPropertiesDialog& dialog = open(served);
        const auto* buttons = dialog.findChild<QDialogButtonBox*>();
        QVERIFY(hands::arriveAt(&dialog));
        QCOMPARE(hands::tabOrder(),
            QStringList({u"swatch-bg"_s, u"swatch-grid"_s, u"swatch-axis"_s, u"swatch-up"_s, u"swatch-down"_s,
                u"swatch-line"_s, u"swatch-vol"_s, u"Qlon Green/Black"_s, u"Black/White"_s,
                buttons->button(QDialogButtonBox::Ok)->text(),
                buttons->button(QDialogButtonBox::Cancel)->text()}));
    }

    void theWheelTurnsTheChoosersNumbersOnlyWhileTheyHaveTheFocus()
    {
        const ServedChart served;
        served.show();
        const ChartPropertiesDialog& dialog = open(served);
        QTest::mouseClick(swatches(dialog).at(0), Qt::LeftButton);
        const auto* chooser = dialog.findChild<QColorDialog*>();
        QVERIFY(chooser);
        const QList<QSpinBox*> numbers = chooser->findChildren<QSpinBox*>();
        QVERIFY(numbers.size() >= 6);
        for (QSpinBox* number : numbers) {
            number->clearFocus();
            const int before = number->value();
            hands::turnWheel(*number, 120);
            QCOMPARE(number->value(), before);
            QVERIFY(!number->hasFocus());
        }
    }

    void cancelLeavesTheChartAsItWas()
    {
        const ServedChart served;
        served.show();
        const QPointer<ChartPropertiesDialog> dialog(&open(served));
        QTest::mouseClick(button(*dialog, u"Black/White"_s), Qt::LeftButton);
        const auto* buttons = dialog->findChild<QDialogButtonBox*>();
        QTest::mouseClick(buttons->button(QDialogButtonBox::Cancel), Qt::LeftButton);
        QCOMPARE(served.chart().colors(), ChartColors());
        QTRY_VERIFY(!dialog);
        QCOMPARE(open(served).colors(), ChartColors());
    }

    void asksOnlyOnceAtATime()
    {
        const ServedChart served;
        served.show();
        QCOMPARE(&open(served), &open(served));
        QCOMPARE(served.window->findChildren<ChartPropertiesDialog*>().size(), 1);
    }
};

TAVORAN_TEST(tst_ChartPropertiesDialog)
#include "tst_ChartPropertiesDialog.moc"
