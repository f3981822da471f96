#include "app/ui/NumberDrop.h"

#include "app/ui/DecimalText.h"

#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>

namespace {

class DropFilter final : public QObject {
public:
    explicit DropFilter(QLineEdit& edit)
        : QObject(&edit)
        , m_edit(edit)
    {
        edit.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        return event->type() == QEvent::Drop && takes(*static_cast<QDropEvent*>(event));
    }

private:
    bool takes(QDropEvent& drop)
    {
        const QString text = drop.mimeData()->text().trimmed();
        if (drop.source() == &m_edit || m_edit.isReadOnly() || !parseDecimal(text))
            return false;
        m_edit.setFocus();
        m_edit.selectAll();
        m_edit.insert(text);
        // A copy, or the place it was dragged from would lose it.
        drop.setDropAction(Qt::CopyAction);
        drop.accept();
        return true;
    }

    QLineEdit& m_edit;
};

} // namespace

void takeDroppedNumbersWhole(QLineEdit& edit)
{
    new DropFilter(edit); // the edit's own child
}
