// A Qt plugin that an unchanged program loads while it is measured: a watcher who also has hands.
// Writes one line to standard output for each thing seen and reads its errands, one line each, from
// standard input:
//   painted CLASS NS      the first paint of a top-level window of this class is done
//   charted SYMBOL NS     a chart painted the history that it had loaded
//   ready NS              the main window knows its symbols: an order can be opened
//   signin                fills the sign-in window and presses its button
//   timeframes N          changes the active chart's timeframe, each time until it is painted; "done NS"
//   dialogs N             opens, paints and closes the order window;                         "done NS"
//   journal N             adds rows to the visible Journal;                                  "done NS"
//   rows                  how many rows the Journal has;                                     "rows N"
//   places                where the charts and their buttons to buy are on the screen, each
//                         "place chart SYMBOL X Y W H" or "place buy SYMBOL X Y W H"
//                         and nothing painted is told any more
//   readings              what each chart reads aloud, "reading SYMBOL TEXT"
// NS is CLOCK_MONOTONIC, but the processor time used for an errand after "done".

#include <QAbstractItemModel>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QGenericPlugin>
#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <QSocketNotifier>
#include <QTabWidget>
#include <QTreeView>

#include <array>
#include <cstdio>
#include <ctime>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

long long nanoseconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

void say(const char* what, const QByteArray& about, long long number)
{
    std::printf("%s %s%s%lld\n", what, about.constData(), about.isEmpty() ? "" : " ", number);
    std::fflush(stdout);
}

class Probe final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Probe)

public:
    Probe()
    {
        qApp->installEventFilter(this);
        connect(&m_errands, &QSocketNotifier::activated, this, &Probe::readErrands);
    }
    ~Probe() override = default;

    bool eventFilter(QObject* target, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && target->isWidgetType())
            notePaint(*static_cast<QWidget*>(target));
        return false;
    }

private:
    void notePaint(QWidget& widget)
    {
        if (widget.isWindow())
            noteWindow(widget);
        else if (widget.inherits("ChartWidget"))
            noteChart(widget);
    }

    // The event comes before its paint; what is queued here runs once all that is due is painted and shown.
    void noteWindow(QWidget& window)
    {
        const QByteArray name = window.metaObject()->className();
        if (name == "OrderDialog")
            QMetaObject::invokeMethod(this, &Probe::closeDialog, Qt::QueuedConnection);
        if (m_painted.contains(name))
            return;
        m_painted.insert(name);
        if (name == "MainWindow")
            watch(window);
        QMetaObject::invokeMethod(
            this, [name] { say("painted", name, nanoseconds(CLOCK_MONOTONIC)); }, Qt::QueuedConnection);
    }

    void noteChart(QWidget& chart)
    {
        // "Chart EURUSD,M15"
        const QString title = chart.accessibleName().section(u' ', 1);
        if (!m_loaded.remove(title))
            return;
        QMetaObject::invokeMethod(
            this, [this, title] { onCharted(title); }, Qt::QueuedConnection);
    }

    void onCharted(const QString& title)
    {
        if (m_switchesLeft > 0)
            switchTimeframe();
        else
            say("charted", title.toUtf8(), nanoseconds(CLOCK_MONOTONIC));
    }

    void watch(QWidget& window)
    {
        m_window = &window;
        m_timeframe = new QAction(this);
        for (QTabWidget* tabs : window.findChildren<QTabWidget*>()) {
            if (tabs->inherits("TerminalPane"))
                m_toolbox = tabs;
        }
        m_journal = window.findChild<QTreeView*>(u"journalList"_s);
        connect(m_journal->model(), &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) {
                for (int row = first; row <= last; ++row)
                    noteJournal(row);
            });
        for (int row = 0; row < m_journal->model()->rowCount(); ++row)
            noteJournal(row);
        for (QAction* action : window.findChildren<QAction*>()) {
            if (action->text() == u"New Order"_s)
                connect(action, &QAction::enabledChanged, this, [](bool on) {
                    if (on)
                        say("ready", {}, nanoseconds(CLOCK_MONOTONIC));
                });
        }
    }

    void noteJournal(int row)
    {
        if (m_rowsLeft > 0)
            return;
        // "EURUSD,M15: 1000 candles loaded"
        const QString line = m_journal->model()->index(row, 2).data().toString();
        if (line.endsWith("candles loaded"_L1))
            m_loaded.insert(line.section(u": "_s, 0, 0));
    }

    void readErrands()
    {
        std::array<char, 512> bytes{};
        const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count <= 0) {
            // Whoever measures has gone.
            _exit(0);
        }
        m_text.append(bytes.data(), count);
        for (qsizetype end = m_text.indexOf('\n'); end >= 0; end = m_text.indexOf('\n')) {
            const QByteArrayList words = m_text.first(end).split(' ');
            m_text.remove(0, end + 1);
            run(words.value(0), words.value(1).toInt());
        }
    }

    void run(const QByteArray& errand, int number)
    {
        m_startedAt = nanoseconds(CLOCK_PROCESS_CPUTIME_ID);
        if (errand == "signin") {
            signIn();
        } else if (errand == "timeframes") {
            m_switchesLeft = number + 1;
            switchTimeframe();
        } else if (errand == "dialogs") {
            m_dialogsLeft = number;
            openDialog();
        } else if (errand == "journal") {
            m_toolbox->setCurrentIndex(m_toolbox->indexOf(m_journal));
            m_rowsLeft = number;
            addRows();
        } else if (errand == "rows") {
            say("rows", {}, m_journal->model()->rowCount());
        } else if (errand == "places") {
            sayPlaces();
            // Who asks for places measures from now on.
            qApp->removeEventFilter(this);
        } else if (errand == "readings") {
            sayReadings();
        }
    }

    void sayPlaces()
    {
        for (const QWidget* chart : m_window->findChildren<QWidget*>()) {
            if (!chart->inherits("ChartWidget"))
                continue;
            // "Chart EURUSD,M15"
            const QByteArray symbol = chart->accessibleName().section(u' ', 1).section(u',', 0, 0).toUtf8();
            sayPlace("chart", symbol, *chart);
            for (const QPushButton* button : chart->findChildren<QPushButton*>()) {
                if (button->text().startsWith(u"BUY"_s))
                    sayPlace("buy", symbol, *button);
            }
        }
        std::fflush(stdout);
    }

    void sayReadings()
    {
        for (QWidget* chart : m_window->findChildren<QWidget*>()) {
            QAccessibleInterface* const side
                = chart->inherits("ChartWidget") ? QAccessible::queryAccessibleInterface(chart) : nullptr;
            if (!side)
                continue;
            const QByteArray symbol = chart->accessibleName().section(u' ', 1).section(u',', 0, 0).toUtf8();
            const QByteArray text = side->text(QAccessible::Value).replace(u'\n', u' ').toUtf8();
            std::printf("reading %s %s\n", symbol.constData(), text.constData());
        }
        std::fflush(stdout);
    }

    static void sayPlace(const char* what, const QByteArray& symbol, const QWidget& widget)
    {
        const QRect place(widget.mapToGlobal(QPoint(0, 0)), widget.size());
        std::printf("place %s %s %d %d %d %d\n", what, symbol.constData(), place.x(), place.y(),
            place.width(), place.height());
    }

    static void signIn()
    {
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            if (!window->inherits("LoginDialog"))
                continue;
            window->findChild<QLineEdit*>(u"email"_s)->setText(u"trader@example.test"_s);
            window->findChild<QLineEdit*>(u"password"_s)->setText(u"password"_s);
            window->findChild<QPushButton*>(u"loginButton"_s)->click();
        }
    }

    void done() { say("done", {}, nanoseconds(CLOCK_PROCESS_CPUTIME_ID) - m_startedAt); }

    void switchTimeframe()
    {
        if (--m_switchesLeft == 0) {
            done();
            return;
        }
        static constexpr std::array keys{"1m", "5m", "15m", "1h", "4h"};
        m_key = (m_key + 1) % keys.size();
        m_timeframe->setData(QString::fromLatin1(keys.at(m_key)));
        QMetaObject::invokeMethod(
            m_window, "onTimeframeAction", Qt::DirectConnection, Q_ARG(QAction*, m_timeframe));
    }

    void openDialog()
    {
        if (m_dialogsLeft == 0)
            done();
        else
            QMetaObject::invokeMethod(m_window, "openOrderDialog", Qt::DirectConnection);
    }

    void closeDialog()
    {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (!window->inherits("OrderDialog") || !window->isVisible())
                continue;
            --m_dialogsLeft;
            connect(window, &QObject::destroyed, this, &Probe::openDialog, Qt::QueuedConnection);
            window->close();
        }
    }

    void addRows()
    {
        constexpr int rowsATurn = 100;
        for (int i = 0; i < rowsATurn && m_rowsLeft > 0; ++i, --m_rowsLeft) {
            const QString line = u"Order %1 of 0.10 EURUSD filled at 1.23456, stop 1.23000"_s.arg(
                m_rowsLeft, 8, 10, QLatin1Char('0'));
            QMetaObject::invokeMethod(
                m_toolbox, "journal", Qt::DirectConnection, Q_ARG(QString, u"Trade"_s), Q_ARG(QString, line));
        }
        if (m_rowsLeft == 0)
            done();
        else
            QMetaObject::invokeMethod(this, &Probe::addRows, Qt::QueuedConnection);
    }

    QSocketNotifier m_errands{STDIN_FILENO, QSocketNotifier::Read};
    QByteArray m_text;
    QSet<QByteArray> m_painted;
    QSet<QString> m_loaded; ///< charts that have their history and have not painted it yet
    QWidget* m_window = nullptr;
    QTabWidget* m_toolbox = nullptr;
    QTreeView* m_journal = nullptr;
    QAction* m_timeframe = nullptr;
    std::size_t m_key = 0;
    int m_switchesLeft = 0;
    int m_dialogsLeft = 0;
    int m_rowsLeft = 0;
    long long m_startedAt = 0;
};

} // namespace

class ProbePlugin final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "startup_probe.json")

public:
    QObject* create(const QString&, const QString&) override { return new Probe; }
};

#include "startup_probe.moc"
