#include "app/ui/ErrorLabel.h"

#include "app/ui/PlainText.h"
#include "app/ui/ScreenReader.h"

#include <QAccessibleWidget>

namespace {

/// A label would be read only by those who look for it; a notification that appears is spoken.
class ErrorAccessible final : public QAccessibleWidget {
public:
    explicit ErrorAccessible(ErrorLabel& label)
        : QAccessibleWidget(&label, QAccessible::Notification)
    {
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? static_cast<ErrorLabel*>(widget())->text()
                                         : QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface* accessibleOf(const QString& /*className*/, QObject* object)
{
    auto* label = qobject_cast<ErrorLabel*>(object);
    return label ? new ErrorAccessible(*label) : nullptr;
}

} // namespace

ErrorLabel::ErrorLabel(QWidget* parent)
    : QLabel(parent)
{
    QAccessible::installFactory(&accessibleOf);
    makePlain(this);
    setWordWrap(true);
    hide();
}

void ErrorLabel::showError(const QString& text)
{
    if (text.isEmpty())
        return hide();
    const bool appears = isHidden();
    showReason(*this, text);
    show();
    if (!appears)
        tellReader(*this, QAccessible::ObjectShow); // as Qt does when it appears
    tellReader(*this, QAccessible::Alert);
}
