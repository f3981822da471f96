#include "app/ui/EnterPress.h"

#include <QAbstractButton>
#include <QKeyEvent>

namespace {

class EnterFilter final : public QObject {
public:
    explicit EnterFilter(QAbstractButton& button)
        : QObject(&button)
        , m_button(button)
    {
        button.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto* press = static_cast<QKeyEvent*>(event);
        if (press->key() != Qt::Key_Return && press->key() != Qt::Key_Enter)
            return false;
        if (!press->isAutoRepeat())
            m_button.click();
        return true;
    }

private:
    QAbstractButton& m_button;
};

} // namespace

void pressWithEnter(QAbstractButton& button)
{
    new EnterFilter(button); // the button's own child
}
