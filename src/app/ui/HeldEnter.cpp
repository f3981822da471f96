#include "app/ui/HeldEnter.h"

#include "app/ui/EnterKey.h"

#include <QPushButton>

namespace {

class HeldEnterFilter final : public QObject {
public:
    explicit HeldEnterFilter(QWidget& window)
        : QObject(&window)
    {
        window.installEventFilter(this);
        // A button with the focus takes the key before its window does.
        for (QPushButton* button : window.findChildren<QPushButton*>())
            button->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto* press = static_cast<QKeyEvent*>(event);
        return press->isAutoRepeat() && isEnter(*press);
    }
};

} // namespace

void refuseHeldEnter(QWidget& window)
{
    new HeldEnterFilter(window); // the window's own child
}
