#include "app/ui/ReadAloud.h"

#include "app/ui/ScreenReader.h"

#include <QAccessibleWidget>

#include <utility>

namespace {

class ReadAloudAccessible final : public QAccessibleWidget {
public:
    ReadAloudAccessible(QWidget& widget, const ReadAloud& content)
        : QAccessibleWidget(&widget, content.role())
        , m_content(content)
    {
    }

    [[nodiscard]] QString text(QAccessible::Text kind) const override
    {
        // Clients on some desktops ask for the value of what changes, on others for its description.
        const bool live = kind == QAccessible::Description || kind == QAccessible::Value;
        return live ? m_content.reading() : QAccessibleWidget::text(kind);
    }

private:
    const ReadAloud& m_content; // a part of the widget, whose end ends this too
};

QAccessibleInterface* accessibleOf(const QString& /*className*/, QObject* object)
{
    const auto* content = dynamic_cast<ReadAloud*>(object);
    return content ? new ReadAloudAccessible(*static_cast<QWidget*>(object), *content) : nullptr;
}

} // namespace

ReadAloud::ReadAloud(QWidget& self, QAccessible::Role role)
    : m_self(self)
    , m_role(role)
    , m_news([this] { return tellReading(); })
{
    QAccessible::installFactory(&accessibleOf);
}

ReadAloud::~ReadAloud() = default;

bool ReadAloud::tellReading()
{
    QString now = reading();
    if (now == m_told)
        return false;
    m_told = std::move(now);
    tellReader(m_self, QAccessible::DescriptionChanged);
    return true;
}
