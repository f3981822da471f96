#include "app/ui/WheelFocus.h"

#include <QEvent>
#include <QWidget>

namespace {

class WheelFilter final : public QObject {
public:
    explicit WheelFilter(QWidget& box)
        : QObject(&box)
        , m_box(box)
    {
        box.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() != QEvent::Wheel || m_box.hasFocus())
            return false;
        event->ignore();
        return true;
    }

private:
    QWidget& m_box;
};

} // namespace

void takeWheelOnlyFocused(QWidget& box)
{
    box.setFocusPolicy(Qt::StrongFocus);
    new WheelFilter(box); // the box's own child
}
