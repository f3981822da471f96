#include "app/ui/ReadAloud.h"

#include "app/ui/LiveAccessible.h"
#include "app/ui/ScreenReader.h"

#include <utility>

namespace {

class ReadAloudAccessible final : public LiveAccessible {
public:
    ReadAloudAccessible(QWidget& widget, const ReadAloud& content)
        : LiveAccessible(&widget, content.role())
        , m_content(content)
    {
    }

protected:
    [[nodiscard]] QString reading() const override { return m_content.reading(); }

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
