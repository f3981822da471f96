// A Qt plugin that the real program loads in its test: the hands of the person in front of it.

#include <QApplication>
#include <QGenericPlugin>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

/// Signs in, or leaves the sign-in window, and closes the main window once the feed is connected.
class Hands final : public QObject {
public:
    explicit Hands(bool signsIn)
        : m_signsIn(signsIn)
    {
        connect(&m_look, &QTimer::timeout, this, &Hands::act);
        m_look.start(lookEveryMs);
    }

private:
    void act()
    {
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (QWidget* window : windows) {
            if (!window->isVisible())
                continue;
            if (window->inherits("LoginDialog") && !m_signedIn)
                answer(*window);
            else if (window->inherits("MainWindow")
                && text(*window, "connectionLabel"_L1).contains(u"> Connected"))
                window->close();
        }
    }

    void answer(QWidget& signIn)
    {
        m_signedIn = true;
        if (!m_signsIn) {
            signIn.close();
            return;
        }
        signIn.findChild<QLineEdit*>(u"email"_s)->setText(u"trader@example.test"_s);
        signIn.findChild<QLineEdit*>(u"password"_s)->setText(u"password"_s);
        signIn.findChild<QPushButton*>(u"loginButton"_s)->click();
    }

    static QString text(const QWidget& window, QLatin1StringView label)
    {
        const auto* found = window.findChild<QLabel*>(label);
        return found ? found->text() : QString();
    }

    static constexpr int lookEveryMs = 10;
    QTimer m_look;
    bool m_signsIn;
    bool m_signedIn = false;
};

} // namespace

class ProcessDriver final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "ProcessDriver.json")

public:
    QObject* create(const QString&, const QString& what) override { return new Hands(what == "signin"_L1); }
};

#include "ProcessDriver.moc"
