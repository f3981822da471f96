#include "OrderDeskFixture.h"
#include "app/ui/DecimalSpinBox.h"
#include "app/ui/Theme.h"
#include "support/TestMain.h"

#include <QAbstractItemView>
#include <QFormLayout>
#include <QScrollBar>
#include <QSet>
#include <QToolTip>
#include <QTranslator>

using namespace Qt::StringLiterals;
using fixtures::Desk;
using fixtures::placePath;

namespace {

/// How far the lightest and the darkest spot of a picture are apart, 0 to 255.
int contrast(const QImage& picture)
{
    int lightest = 0;
    int darkest = 255;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int lightness = picture.pixelColor(x, y).lightness();
            lightest = std::max(lightest, lightness);
            darkest = std::min(darkest, lightness);
        }
    }
    return lightest - darkest;
}

/// One type of order with a long name, as another language may have.
class LongLimitOrder final : public QTranslator {
    Q_OBJECT

public:
    [[nodiscard]] QString translate(
        const char* /*context*/, const char* source, const char* /*comment*/, int /*number*/) const override
    {
        const QString text = QString::fromUtf8(source);
        return text == u"Limit Order"_s ? text.repeated(4) : QString();
    }
    [[nodiscard]] bool isEmpty() const override { return false; }
};

} // namespace

class TestOrderDialogLooks final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setTheme(false);
        applyTheme(*qApp);
    }

    void toolsOfTheLeftListAreAsPlanned()
    {
        const Desk desk;
        QVERIFY(!desk.button(u"Stop Limit Order"_s)->isEnabled());
        QCOMPARE(desk.button(u"Stop Limit Order"_s)->toolTip(), u"Not available on this platform"_s);
        QSet<qint64> pictures;
        for (const QString& text :
            {u"Market Execution"_s, u"Limit Order"_s, u"Stop Order"_s, u"Stop Limit Order"_s,
                u"One Click Trading"_s, u"Tick Chart"_s, u"Depth of Market"_s, u"Minimize"_s}) {
            QVERIFY(!desk.button(text)->icon().isNull());
            pictures.insert(desk.button(text)->icon().cacheKey());
        }
        QCOMPARE(pictures.size(), 8);
        for (const QString& text : {u"One Click Trading"_s, u"Tick Chart"_s, u"Depth of Market"_s})
            QVERIFY(!desk.button(text)->isEnabled());
        QVERIFY(desk.button(u"Minimize"_s)->isEnabled());
    }

    void partsHaveTheirPlacesAndStyles()
    {
        const Desk desk;
        QVERIFY(desk.dialog->styleSheet().endsWith(
            u"OrderDialog{background:#ffffff;}QLabel{color:#222;} QLineEdit,QComboBox,QDoubleSpinBox"
            "{background:#ffffff;color:#222;border:1px solid #b7b7b7;padding:3px;}"_s));
        const auto* columns = desk.dialog->layout();
        QCOMPARE(columns->contentsMargins(), QMargins());
        QCOMPARE(columns->spacing(), 0);
        QCOMPARE(columns->count(), 3);

        const QWidget* left = columns->itemAt(0)->widget();
        QCOMPARE(left->styleSheet(), u"background:#f3f3f3;"_s);
        QCOMPARE(left->layout()->contentsMargins(), QMargins(8, 12, 8, 12));
        QCOMPARE(left->layout()->spacing(), 2);
        for (const QString& text :
            {u"Market Execution"_s, u"Limit Order"_s, u"Stop Order"_s, u"Stop Limit Order"_s}) {
            QVERIFY(desk.button(text)->isCheckable());
            QCOMPARE(desk.button(text)->cursor().shape(), Qt::PointingHandCursor);
            QCOMPARE(desk.button(text)->styleSheet(),
                u"QPushButton{ text-align:left; padding:8px 10px; border:none;background:transparent; "
                u"color:#222; }"
                "QPushButton:checked{ background:#ffffff; border-left:3px solid #0e639c;font-weight:bold; }"
                "QPushButton:hover{ background:#e8e8e8; }"_s);
        }
        for (const QString& text :
            {u"One Click Trading"_s, u"Tick Chart"_s, u"Depth of Market"_s, u"Minimize"_s})
            QCOMPARE(desk.button(text)->styleSheet(),
                u"QPushButton{ text-align:left; padding:6px 10px; border:none;background:transparent; "
                u"color:#444; }"
                " QPushButton:hover{ background:#e8e8e8; }"_s);

        const QWidget* form = columns->itemAt(1)->widget();
        QCOMPARE(form->layout()->contentsMargins(), QMargins(24, 20, 24, 16));
        const auto* fields = form->findChild<QFormLayout*>();
        QCOMPARE(fields->horizontalSpacing(), 9);
        QCOMPARE(fields->verticalSpacing(), 9);
        QCOMPARE(fields->labelAlignment(), Qt::AlignRight | Qt::AlignVCenter);
        QStringList captions;
        for (int row = 0; row < fields->rowCount(); ++row) {
            const QLayoutItem* label = fields->itemAt(row, QFormLayout::LabelRole);
            captions.append(qobject_cast<QLabel*>(label->widget())->text());
        }
        QCOMPARE(captions,
            (QStringList{
                u"Symbol:"_s, u"Volume:"_s, u"Stop Loss:"_s, u"Take Profit:"_s, u"Price:"_s, u"Comment:"_s}));
        QCOMPARE(desk.units()->styleSheet(), u"color:#888;"_s);
        QCOMPARE(desk.prices()->styleSheet(), u"font-size:26pt; font-weight:bold; color:#222;"_s);
        QCOMPARE(desk.prices()->alignment(), Qt::AlignCenter);
        QCOMPARE(desk.error()->styleSheet(), u"color:#c0392b;"_s);
        QVERIFY(desk.error()->wordWrap());
        const QString button
            = u"QPushButton{background:#e8edf3;border:1px solid #b7c6d6;color:%1;font-weight:bold;}"
              "QPushButton:hover{background:#dde6f0;}"_s;
        QCOMPARE(desk.sell()->styleSheet(), button.arg(u"#c0392b"_s));
        QCOMPARE(desk.buy()->styleSheet(), button.arg(u"#1f6fb2"_s));
        QCOMPARE(desk.sell()->minimumHeight(), 34);
        QCOMPARE_LT(desk.sell()->x(), desk.buy()->x());
        QCOMPARE(columns->itemAt(2)->widget(), desk.ticks());
        QVERIFY(!desk.dialog->windowIcon().isNull());
    }

    void everyFieldHasANameAndALabel()
    {
        const Desk desk;
        QStringList captions;
        for (const QLabel* label : desk.dialog->findChildren<QLabel*>()) {
            if (!label->buddy())
                continue;
            captions.append(label->text());
            QCOMPARE(label->buddy()->accessibleName() + u':', label->text());
        }
        captions.sort();
        QCOMPARE(captions,
            (QStringList{
                u"Comment:"_s, u"Price:"_s, u"Stop Loss:"_s, u"Symbol:"_s, u"Take Profit:"_s, u"Volume:"_s}));
    }

    void serverTextsAreShownAsPlainText()
    {
        Desk desk({}, {records::symbol("A%1B").described("<b>%2</b>\nx")});
        QCOMPARE(desk.combo(u"orderSymbol"_s)->itemText(0), u"A%1B, <b>%2</b> x"_s);
        QCOMPARE(desk.dialog->windowTitle(), u"Order: A%1B - <b>%2</b> x"_s);
        desk.server.on("POST", placePath, StubAnswer::message(u"<img src='file:///x'>%1"_s, 400));
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(desk.error()->isVisible());
        QCOMPARE(desk.error()->text(), u"<img src='file:///x'>%1"_s);
        QCOMPARE(desk.error()->textFormat(), Qt::PlainText);
        QCOMPARE(desk.units()->textFormat(), Qt::PlainText);
        QCOMPARE(desk.prices()->textFormat(), Qt::PlainText);
    }

    void sizesHoldUnderBothThemes_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light") << false;
        QTest::newRow("dark") << true;
    }
    void sizesHoldUnderBothThemes()
    {
        QFETCH(bool, dark);
        setTheme(dark);
        applyTheme(*qApp);
        Desk desk;
        desk.quote("EURUSD", 1.0712, 1.07135);
        QCOMPARE(desk.dialog->size(), QSize(920, 440));
        QCOMPARE(desk.ticks()->width(), 300);
        QCOMPARE(desk.button(u"Limit Order"_s)->parentWidget()->width(), 200);
        QCOMPARE_GE(desk.sell()->height(), 34);
        QCOMPARE_GE(desk.buy()->height(), 34);
        QCOMPARE_GE(desk.part<DecimalSpinBox>(u"orderVolume"_s)->width(), 60);
        for (const QPushButton* button : desk.dialog->findChildren<QPushButton*>())
            QVERIFY2(button->width() >= button->fontMetrics().horizontalAdvance(button->text()) + 20,
                qPrintable(button->text()));
        desk.quote("EURUSD", 1.0713, 1.07145);
        desk.quote("EURUSD", 1.07125, 1.0714);
        QTRY_COMPARE_GE(
            desk.units()->width(), desk.units()->fontMetrics().horizontalAdvance(desk.units()->text()));
        QCOMPARE_GE(desk.combo(u"orderComment"_s)->width(), 200);
        const QImage picture = desk.dialog->grab().toImage();
        // The window is light in both themes: the empty corner under the left list and of the form.
        QCOMPARE(picture.pixelColor(190, 220), QColor(u"#f3f3f3"_s));
        QCOMPARE(picture.pixelColor(210, 10), QColor(u"#ffffff"_s));
        if (const QString folder = qEnvironmentVariable("TAVORAN_PICTURES"); !folder.isEmpty())
            desk.dialog->grab().save(folder + (dark ? "/order-dark.png"_L1 : "/order-light.png"_L1));
    }

    void aChosenTypeHasRoomForItsMarkAndBoldLetters()
    {
        LongLimitOrder translator;
        QVERIFY(QApplication::installTranslator(&translator));
        const Desk desk;
        QPushButton* limit = desk.button(u"Limit Order"_s.repeated(4));
        QVERIFY(!limit->isChecked());
        constexpr int mark = 3; // the line at the left of the chosen type
        QFont bold = limit->font();
        bold.setBold(true);
        const int boldness = QFontMetrics(bold).horizontalAdvance(limit->text())
            - limit->fontMetrics().horizontalAdvance(limit->text());
        QCOMPARE_GE(limit->width(), limit->sizeHint().width() + boldness + mark);
    }

    void whatPopsUpIsLegibleUnderBothThemes_data() { sizesHoldUnderBothThemes_data(); }
    void whatPopsUpIsLegibleUnderBothThemes()
    {
        QFETCH(bool, dark);
        setTheme(dark);
        applyTheme(*qApp);
        const Desk desk;
        QPushButton* stopLimit = desk.button(u"Stop Limit Order"_s);
        QHelpEvent hover(QEvent::ToolTip, QPoint(5, 5), stopLimit->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(stopLimit, &hover);
        QWidget* tip = nullptr;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->inherits("QTipLabel") && widget->isVisible())
                tip = widget;
        }
        QVERIFY(tip);
        const QRect text = tip->rect().adjusted(3, 3, -3, -3);
        QCOMPARE_GE(contrast(tip->grab(text).toImage()), 130);
        QToolTip::hideText();

        QComboBox* symbols = desk.combo(u"orderSymbol"_s);
        symbols->showPopup();
        QAbstractItemView* list = symbols->view();
        QTRY_VERIFY(list->isVisible());
        for (int row = 0; row < 3; ++row) {
            const QRect place = list->visualRect(list->model()->index(row, 0));
            QTRY_VERIFY(list->viewport()->rect().contains(list->visualRect(list->model()->index(row, 0))));
            QCOMPARE_GE(contrast(list->viewport()->grab(place).toImage()), 130);
        }
        symbols->hidePopup();
    }

    void aLongSymbolListScrolls()
    {
        QJsonArray many;
        for (int i = 0; i < 500; ++i)
            many.append(QJsonObject{{"name"_L1, u"S%1"_s.arg(i)}});
        const Desk desk({}, many);
        QComboBox* symbols = desk.combo(u"orderSymbol"_s);
        symbols->showPopup();
        QTRY_VERIFY(symbols->view()->isVisible());
        QCOMPARE_LE(symbols->view()->height(), 320);
        QVERIFY(symbols->view()->verticalScrollBar()->isVisible());
        symbols->hidePopup();
    }
};

TAVORAN_TEST(TestOrderDialogLooks)
#include "tst_OrderDialogLooks.moc"
