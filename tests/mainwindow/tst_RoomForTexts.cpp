#include "MainWindowFixture.h"
#include "app/base/Translations.h"
#include "app/ui/Theme.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/FittingLabel.h"
#include "mainwindow/TerminalActions.h"
#include "net/signin/LoginDialog.h"
#include "panes/AlertsPane.h"
#include "panes/FittingDelegate.h"
#include "support/PictureCheck.h"
#include "support/TestMain.h"

#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QDialog>
#include <QGroupBox>
#include <QHeaderView>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QTranslator>
#include <QTreeView>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// Makes every text half as long again, and reads on: Order becomes [Ooordeeer].
class LongTexts final : public QTranslator {
    Q_OBJECT

public:
    [[nodiscard]] QString translate(
        const char* /*context*/, const char* source, const char* /*comment*/, int /*number*/) const override
    {
        const QString text = QString::fromUtf8(source);
        static const QString vowels = u"aeiouyAEIOUY"_s;
        QString longer;
        bool markup = false;
        for (const QChar c : text) {
            markup = (markup || c == u'<') && c != u'>';
            longer += c;
            if (!markup && vowels.contains(c))
                longer += QString(c.toLower()).repeated(longer.size() * 2 < text.size() * 3 ? 1 : 0);
        }
        const qsizetype wanted = text.size() * 3 / 2;
        while (longer.size() < wanted && !text.contains(u'\n'))
            longer += u'~';
        return longer;
    }
    [[nodiscard]] bool isEmpty() const override { return false; }
};

/// What in the windows on the screen has no room for its text, or lies over something else.
class Cramped final {
public:
    static QStringList found()
    {
        Cramped cramped;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && !qobject_cast<QMenu*>(window))
                cramped.look(*window);
        }
        cramped.m_found.removeDuplicates();
        return cramped.m_found;
    }

private:
    void tell(const QWidget& widget, const QString& text, const QSize& wanted, const QSize& room)
    {
        m_found.append(u"%1 %2 in %3: \"%4\" takes %5 x %6 of %7 x %8"_s.arg(
            QString::fromLatin1(widget.metaObject()->className()), widget.objectName(),
            QString::fromLatin1(widget.window()->metaObject()->className()),
            QString(text).replace(u'\n', u'|'), QString::number(wanted.width()),
            QString::number(wanted.height()), QString::number(room.width()), QString::number(room.height())));
    }
    void fit(const QWidget& widget, const QString& text, const QSize& wanted, const QSize& room)
    {
        if (!text.isEmpty() && (wanted.width() > room.width() || wanted.height() > room.height()))
            tell(widget, text, wanted, room);
    }

    void look(const QWidget& widget)
    {
        measure(widget);
        QList<const QWidget*> shown;
        for (const QObject* child : widget.children()) {
            const auto* inner = qobject_cast<const QWidget*>(child);
            if (!inner || inner->isWindow() || !inner->isVisibleTo(widget.window()))
                continue;
            look(*inner);
            if (holdsText(*inner))
                shown.append(inner);
        }
        for (qsizetype i = 0; i < shown.size(); ++i) {
            for (qsizetype k = i + 1; k < shown.size(); ++k) {
                if (shown[i]->geometry().intersects(shown[k]->geometry()))
                    m_found.append(u"%1 %2 lies over %3 %4"_s.arg(
                        QString::fromLatin1(shown[i]->metaObject()->className()), shown[i]->objectName(),
                        QString::fromLatin1(shown[k]->metaObject()->className()), shown[k]->objectName()));
            }
        }
    }

    static bool holdsText(const QWidget& widget)
    {
        if (qobject_cast<const QTabBar*>(widget.parentWidget()))
            return false; // arrows, which lie over the tabs on purpose
        return qobject_cast<const QLabel*>(&widget) || qobject_cast<const QAbstractButton*>(&widget)
            || qobject_cast<const QComboBox*>(&widget) || qobject_cast<const QAbstractSpinBox*>(&widget)
            || (qobject_cast<const QLineEdit*>(&widget)
                && !qobject_cast<const QAbstractSpinBox*>(widget.parentWidget()));
    }

    void measure(const QWidget& widget)
    {
        if (const auto* label = qobject_cast<const QLabel*>(&widget))
            return measureLabel(*label);
        if (const auto* button = qobject_cast<const QAbstractButton*>(&widget))
            return measureButton(*button);
        if (const auto* tabs = qobject_cast<const QTabBar*>(&widget))
            return measureTabs(*tabs);
        if (const auto* group = qobject_cast<const QGroupBox*>(&widget))
            return fit(*group, group->title(), group->minimumSizeHint(), group->size());
        if (const auto* combo = qobject_cast<const QComboBox*>(&widget))
            return measureCombo(*combo);
        if (const auto* edit = qobject_cast<const QLineEdit*>(&widget))
            return measureEdit(*edit);
        if (const auto* list = qobject_cast<const QTreeView*>(&widget))
            return measureList(*list);
    }
    void measureList(const QTreeView& list)
    {
        const QAbstractItemModel& model = *list.model();
        for (int column = 0; column < model.columnCount(); ++column) {
            if (list.isColumnHidden(column))
                continue;
            const QString title = model.headerData(column, Qt::Horizontal).toString();
            const QSize room(list.columnWidth(column), list.header()->height());
            if (!list.isHeaderHidden())
                fit(list, title,
                    QSize(list.header()->sectionSizeHint(column), list.header()->sizeHint().height()), room);
            // What other people write may be of any length, and is cut with dots.
            const bool isOthers = list.header()->stretchLastSection() && column == model.columnCount() - 1;
            if (!isOthers && !list.isHeaderHidden())
                measureCells(list, column);
        }
    }
    void measureCells(const QTreeView& list, int column)
    {
        if (qobject_cast<FittingDelegate*>(list.itemDelegateForColumn(column)))
            return; // sets letters narrower where they have no room
        for (int row = 0; row < list.model()->rowCount(); ++row) {
            const QModelIndex index = list.model()->index(row, column);
            const QSize wanted(list.sizeHintForIndex(index).width(), list.fontMetrics().height());
            fit(list, index.data().toString(), wanted, list.visualRect(index).size());
        }
    }
    void measureLabel(const QLabel& label)
    {
        if (qobject_cast<const FittingLabel*>(&label) || label.text().isEmpty())
            return; // tells the rest as a tool tip
        const QSize wanted
            = label.wordWrap() ? QSize(0, label.heightForWidth(label.width())) : label.sizeHint();
        fit(label, label.text(), wanted, label.size());
    }
    void measureButton(const QAbstractButton& button)
    {
        if (const auto* tool = qobject_cast<const QToolButton*>(&button)) {
            const bool showsText = tool->toolButtonStyle() != Qt::ToolButtonIconOnly || tool->icon().isNull();
            return fit(button, showsText ? button.text() : QString(), tool->sizeHint(), tool->size());
        }
        QStyleOptionButton option;
        option.initFrom(&button);
        option.text = button.text();
        option.icon = button.icon();
        const bool box = qobject_cast<const QCheckBox*>(&button) != nullptr;
        const QRect room = button.style()->subElementRect(
            box ? QStyle::SE_CheckBoxContents : QStyle::SE_PushButtonContents, &option, &button);
        QSize wanted = button.fontMetrics().size(Qt::TextShowMnemonic, button.text());
        if (!box && !button.icon().isNull())
            wanted.rwidth() += button.iconSize().width() + 4;
        fit(button, button.text(), wanted, room.size());
    }
    void measureTabs(const QTabBar& tabs)
    {
        constexpr int padding = 24;
        for (int i = 0; i < tabs.count(); ++i) {
            const QSize wanted = tabs.fontMetrics().size(Qt::TextShowMnemonic, tabs.tabText(i));
            fit(tabs, tabs.tabText(i), wanted, tabs.tabRect(i).size() - QSize(padding, 0));
        }
    }
    void measureCombo(const QComboBox& combo)
    {
        if (combo.objectName() == u"accountSelector"_s)
            return; // its list is as wide as need be
        QStyleOptionComboBox option;
        option.initFrom(&combo);
        const QRect room = combo.style()->subControlRect(
            QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &combo);
        const QSize wanted = combo.fontMetrics().size(Qt::TextSingleLine, combo.currentText());
        fit(combo, combo.currentText(), wanted, room.size());
    }
    void measureEdit(const QLineEdit& edit)
    {
        const QString text = edit.text().isEmpty() ? edit.placeholderText() : edit.displayText();
        const QSize wanted = edit.fontMetrics().size(Qt::TextSingleLine, text);
        fit(edit, text, wanted, edit.contentsRect().size());
    }

    QStringList m_found;
};

/// Translates while it lives.
class Language final {
    Q_DISABLE_COPY_MOVE(Language)

public:
    explicit Language(const QString& name)
    {
        if (name == u"de"_s)
            m_german.emplace(QStringList{name}, QStringLiteral(TRANSLATIONS_FOLDER));
        else if (name == u"long"_s)
            QCoreApplication::installTranslator(&m_texts);
    }
    ~Language() { QCoreApplication::removeTranslator(&m_texts); }

private:
    LongTexts m_texts;
    std::optional<Translations> m_german;
};

/// A screen so large that nothing is made smaller to fit it, with letters of that size.
void useScreen(const QByteArray& dotsAnInch)
{
    const QString path = QDir::temp().filePath(u"screens.json"_s);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qUtf8Printable(path));
    file.write(R"({"screens": [{"name": "large", "x": 0, "y": 0, "width": 3200, "height": 2000,
        "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    file.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(path));
    qputenv("QT_FONT_DPI", dotsAnInch);
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0"); // else this platform has letters of one size only
}

constexpr QSize smallScreen(1024, 600);
constexpr int ordinaryDpi = 96;

} // namespace

/// In ordinary and large letters, and in a language with longer texts, all texts have room.
class TestRoomForTexts final : public QObject {
    Q_OBJECT

    static void addLanguages()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("English") << u"en"_s;
        QTest::newRow("German") << u"de"_s;
        QTest::newRow("half as long again") << u"long"_s;
    }

    void look(const QString& place)
    {
        QCoreApplication::processEvents();
        for (const QString& cramped : Cramped::found()) {
            if (!m_known.contains(cramped))
                m_cramped.append(place + u": "_s + cramped);
            m_known.insert(cramped);
        }
        lookAtSizes();
    }

    /// With ordinary letters dialogs fit a small screen, with room for a frame and a panel.
    void lookAtSizes()
    {
        if (qApp->primaryScreen()->logicalDotsPerInch() > ordinaryDpi)
            return;
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            const auto* dialog = qobject_cast<const QDialog*>(window);
            if (!dialog || !dialog->isVisible())
                continue;
            const QSize least = dialog->minimumSizeHint().expandedTo(dialog->minimumSize());
            if (least.width() > smallScreen.width() - 8 || least.height() > smallScreen.height() - 40)
                m_cramped.append(
                    u"%1 is at least %2 x %3"_s.arg(QString::fromLatin1(dialog->metaObject()->className()),
                        QString::number(least.width()), QString::number(least.height())));
        }
    }

    void verify() { QVERIFY2(m_cramped.isEmpty(), qPrintable(u"\n   "_s + m_cramped.join(u"\n   "_s))); }

    QStringList m_cramped;
    QSet<QString> m_known;

    static void signIn(MainWindowFixture& f)
    {
        f.signIn();
        QTRY_VERIFY(f.window->findChild<TerminalActions*>()->newOrder->isEnabled());
        QTRY_COMPARE(f.list("tradeList").topLevelItemCount(), 1);
        f.settle();
    }

    static void closeDialogs(const MainWindow& window)
    {
        for (QDialog* dialog : window.findChildren<QDialog*>()) {
            if (dialog->isVisible())
                dialog->reject();
        }
    }

private Q_SLOTS:
    void init()
    {
        m_cramped.clear();
        m_known.clear();
    }

    void initTestCase()
    {
        QCOMPARE(QString::number(qApp->primaryScreen()->logicalDotsPerInch()),
            qEnvironmentVariable("TAVORAN_TEST_DPI", u"96"_s));
        QVERIFY(pictures::useBundledFont(u"Segoe UI"_s));
        applyTheme(*qApp);
    }

    void everything_in_the_main_window_has_room_data() { addLanguages(); }
    void everything_in_the_main_window_has_room()
    {
        QFETCH(const QString, name);
        const Language language(name);
        MainWindowFixture f;
        signIn(f);
        const QString command = f.window->findChild<TerminalActions*>()->newOrder->text();
        QVERIFY(name == u"long"_s ? command.size() * 2 >= u"New Order"_s.size() * 3 - 1
                                  : command == (name == u"de"_s ? u"Neue Order"_s : u"New Order"_s));
        f.window->openChart(u"EURUSD"_s);
        f.feed.send(records::priceUpdate({{"EURUSD", 1.1, 1.2}}));
        look(u"main window"_s);
        for (QTabWidget* tabs : f.window->findChildren<QTabWidget*>()) {
            for (int i = 0; i < tabs->count(); ++i) {
                tabs->setCurrentIndex(i);
                look(tabs->tabText(i));
            }
        }
        verify();
    }

    void everything_in_the_dialogs_has_room_data() { addLanguages(); }
    void everything_in_the_dialogs_has_room()
    {
        QFETCH(const QString, name);
        const Language language(name);
        MainWindowFixture f;
        signIn(f);
        f.window->openChart(u"EURUSD"_s);
        const TerminalActions& actions = *f.window->findChild<TerminalActions*>();
        for (QAction* action : {actions.newOrder, actions.properties, actions.about, actions.popupPrices,
                 actions.indicators.constFirst(), actions.depthOfMarket, actions.dataWindow,
                 actions.specification}) {
            action->trigger();
            f.feed.send(records::priceUpdate({{"EURUSD", 1.1001, 1.2001}}));
            f.settle();
            look(action->text());
            for (QComboBox* choice : f.window->findChildren<QComboBox*>()) {
                if (!qobject_cast<QDialog*>(choice->window()) || !choice->isVisible())
                    continue;
                for (int i = 0; i < choice->count(); ++i) {
                    choice->setCurrentIndex(i);
                    look(action->text() + u", "_s + choice->itemText(i));
                }
            }
            closeDialogs(*f.window);
        }
        const QJsonObject trade = f.list("tradeList").topLevelItem(0)->data(0, Qt::UserRole).toJsonObject();
        f.window->onTradeDoubleClicked(trade);
        look(u"modify"_s);
        closeDialogs(*f.window);
        f.window->onTradeContextMenu(QPoint(100, 100), trade);
        auto* menu = f.window->findChild<QMenu*>(u"tradeMenu"_s);
        QVERIFY(menu);
        menu->actions().constFirst()->trigger();
        look(u"close"_s);
        closeDialogs(*f.window);
        f.window->findChild<AlertsPane*>()->findChild<QPushButton*>()->click();
        look(u"alert"_s);
        verify();
    }

    void everything_in_the_sign_in_dialog_has_room_data() { addLanguages(); }
    void everything_in_the_sign_in_dialog_has_room()
    {
        QFETCH(const QString, name);
        const Language language(name);
        LoginDialog dialog(TerminalSettings::instance());
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        look(u"sign-in"_s);
        verify();
    }
};

int main(int argc, char** argv)
{
    usePrivateFolders();
    pictures::useFixedTextRendering();
    useScreen(qEnvironmentVariable("TAVORAN_TEST_DPI", u"96"_s).toLatin1());
    QApplication application(argc, argv);
    TestRoomForTexts test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_RoomForTexts.moc"
