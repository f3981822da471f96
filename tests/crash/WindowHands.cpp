// A Qt plugin that the unchanged terminal loads: hands at its windows. Signs in with TAVORAN_HANDS_PASSWORD,
// says what the main window shows, and then has it save, one thing after the other, until the process is
// killed or TAVORAN_HANDS_STEPS are done. A line of standard output for each thing:
//   found PARTS            what the window shows after its start
//   saving PARTS           what will have changed in the settings when the next save is done
//   saved                  that save is done; with PARTS when asked
//   left                   the program ends by itself
// PARTS is a JSON object with some of "alerts", "theme" and "layout", and with "told", the refused saves that
// the Journal tells of, when TAVORAN_HANDS_ASKED is set: then each step waits for a byte of standard input.
// The steps count on from TAVORAN_HANDS_FIRST.

#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDockWidget>
#include <QGenericPlugin>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest/QTest>

#include <array>
#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int settleMs
    = 30; ///< after the window's first paint, so that it has noted that its layout is restored
constexpr int pauseMs = 2;
constexpr int mostAlerts = 8;
constexpr int mostCharts = 3;
constexpr std::array timeframes{"M1", "M5", "M15", "H1", "H4", "D1"};

void say(const char* what, const QJsonObject& parts = {})
{
    const QByteArray text
        = parts.isEmpty() ? QByteArray() : ' ' + QJsonDocument(parts).toJson(QJsonDocument::Compact);
    std::printf("%s%s\n", what, text.constData());
    std::fflush(stdout);
}

class Hands final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Hands)

public:
    Hands()
        : m_step(qEnvironmentVariableIntValue("TAVORAN_HANDS_FIRST"))
        , m_last(m_step + qEnvironmentVariableIntValue("TAVORAN_HANDS_STEPS"))
    {
        qApp->installEventFilter(this);
    }
    ~Hands() override = default;

    bool eventFilter(QObject* target, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && target->isWidgetType() && !m_seen.contains(target)) {
            const auto* widget = static_cast<QWidget*>(target);
            if (widget->inherits("LoginDialog")) {
                m_seen.insert(target);
                QTimer::singleShot(0, target, [widget] { signIn(*widget); });
            } else if (widget->inherits("MainWindow")) {
                m_seen.insert(target);
                m_window = static_cast<QMainWindow*>(target);
                QTimer::singleShot(settleMs, this, &Hands::begin);
            }
        }
        return false;
    }

private:
    static void signIn(const QWidget& dialog)
    {
        QTest::keyClicks(
            dialog.findChild<QLineEdit*>(u"password"_s), qEnvironmentVariable("TAVORAN_HANDS_PASSWORD"));
        dialog.findChild<QPushButton*>(u"loginButton"_s)->click();
    }

    void begin()
    {
        // It is closed again and again, and shown again.
        QGuiApplication::setQuitOnLastWindowClosed(false);
        m_alerts = m_window->findChild<QTreeWidget*>(u"alertsList"_s);
        m_charts = m_window->findChild<QMdiArea*>();
        QJsonObject found{{u"alerts"_s, alerts()}, {u"theme"_s, theme()}, {u"layout"_s, layout()}};
        if (m_isAsked)
            found[u"told"_s] = told();
        say("found", found);
        connect(&m_pause, &QTimer::timeout, this, &Hands::step);
        m_pause.start(pauseMs);
    }

    void step()
    {
        // Without symbols there is neither an alert nor a chart to be made.
        if (!action(u"New Chart"_s)->isEnabled())
            return;
        if (m_isAsked && std::getchar() == EOF)
            return m_pause.stop();
        if (++m_step > m_last) {
            m_pause.stop();
            changeLayout();
            connect(qApp, &QCoreApplication::aboutToQuit, this, [] { say("left"); });
            return save({{u"layout"_s, layout()}}, [this] { action(u"E&xit"_s)->trigger(); });
        }
        if (m_step % 3 == 0) {
            changeLayout();
            save({{u"layout"_s, layout()}}, [this] { m_window->close(); });
            m_window->show();
        } else if (m_step % 3 == 1) {
            const QString other = theme() == "Dark"_L1 ? u"Light"_s : u"Dark"_s;
            save({{u"theme"_s, other}}, [this, &other] { action(other)->trigger(); });
        } else if (m_alerts->topLevelItemCount() < mostAlerts) {
            addAlert();
        } else {
            deleteAlert();
        }
    }

    void save(const QJsonObject& parts, const std::function<void()>& act) const
    {
        say("saving", parts);
        act();
        say("saved", m_isAsked ? QJsonObject{{u"told"_s, told()}} : QJsonObject());
    }

    [[nodiscard]] int told() const
    {
        const auto* journal = m_window->findChild<QTreeWidget*>(u"journalList"_s);
        return static_cast<int>(
            journal->findItems(u"The settings could not be saved to "_s, Qt::MatchContains, 2).size());
    }

    /// At a price that no market here reaches.
    void addAlert()
    {
        button(u"Add Alert"_s)->click();
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        auto* price = dialog->findChild<QAbstractSpinBox*>(u"alertPrice"_s);
        const QString text = u"%1.00000"_s.arg(1'000'000 + m_step);
        price->selectAll();
        QTest::keyClicks(price, text);
        QJsonArray expected = alerts();
        expected.append(text);
        save({{u"alerts"_s, expected}}, [price] { QTest::keyClick(price, Qt::Key_Return); });
    }

    void deleteAlert()
    {
        const int row = m_step % mostAlerts;
        QJsonArray expected = alerts();
        expected.removeAt(row);
        m_alerts->setCurrentItem(m_alerts->topLevelItem(row));
        save({{u"alerts"_s, expected}}, [this] { button(u"Delete"_s)->click(); });
    }

    /// Nothing of it is saved before the window is closed.
    void changeLayout()
    {
        m_window->resize(1000 + m_step % 83, 700 + m_step % 61);
        auto* navigator = m_window->findChild<QDockWidget*>(u"dockNavigator"_s);
        navigator->setVisible(!navigator->isVisible());
        if (m_charts->subWindowList().size() <= m_step % mostCharts)
            action(u"New Chart"_s)->trigger();
        else if (m_charts->subWindowList().size() > 1)
            m_charts->activeSubWindow()->close();
        action(QString::fromLatin1(timeframes.at(static_cast<std::size_t>(m_step) % timeframes.size())))
            ->trigger();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    [[nodiscard]] QJsonArray alerts() const
    {
        QJsonArray prices;
        for (int row = 0; row < m_alerts->topLevelItemCount(); ++row)
            prices.append(m_alerts->topLevelItem(row)->text(2));
        return prices;
    }

    [[nodiscard]] QString theme() const { return action(u"Dark"_s)->isChecked() ? u"Dark"_s : u"Light"_s; }

    [[nodiscard]] QJsonObject layout() const
    {
        QJsonArray charts;
        const QList<QMdiSubWindow*> windows = m_charts->subWindowList();
        for (const QMdiSubWindow* window : windows)
            charts.append(window->widget()->windowTitle());
        const QString docks
            = m_window->findChild<QDockWidget*>(u"dockNavigator"_s)->isHidden() ? u"two"_s : u"three"_s;
        return {{u"width"_s, m_window->width()}, {u"height"_s, m_window->height()}, {u"docks"_s, docks},
            {u"charts"_s, charts}};
    }

    [[nodiscard]] QAction* action(const QString& text) const
    {
        const QList<QAction*> actions = m_window->findChildren<QAction*>();
        for (QAction* action : actions) {
            if (action->text() == text)
                return action;
        }
        qFatal("no action %s", qPrintable(text));
    }

    [[nodiscard]] QPushButton* button(const QString& text) const
    {
        const QList<QPushButton*> buttons = m_window->findChildren<QPushButton*>();
        for (QPushButton* button : buttons) {
            if (button->text() == text)
                return button;
        }
        qFatal("no button %s", qPrintable(text));
    }

    int m_step;
    int m_last;
    bool m_isAsked = qEnvironmentVariableIsSet("TAVORAN_HANDS_ASKED");
    QSet<QObject*> m_seen;
    QMainWindow* m_window = nullptr;
    QTreeWidget* m_alerts = nullptr;
    QMdiArea* m_charts = nullptr;
    QTimer m_pause;
};

class HandsPlugin final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "window_hands.json")

public:
    QObject* create(const QString& key, const QString& /*specification*/) override
    {
        return key == "tavoran-hands"_L1 ? new Hands : nullptr;
    }
};

} // namespace

#include "WindowHands.moc"
