#include "pixel/XMouse.h"

#include "pixel/Monotonic.h"
#include "scenes/Waiting.h"

#include <xcb/xcb.h>
#include <xcb/xtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr unsigned char leftButton = 1;
constexpr unsigned char toThatPlace = 0; // and not by so much

} // namespace

XMouse::XMouse(const QString& display)
    : m_connection(xcb_connect(display.toLatin1().constData(), nullptr))
{
    const xcb_query_extension_reply_t* const xtest = xcb_connection_has_error(m_connection)
        ? nullptr
        : xcb_get_extension_data(m_connection, &xcb_test_id);
    if (!xtest || !xtest->present)
        giveUp(u"the X server has no mouse to be moved"_s);
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
}

XMouse::~XMouse()
{
    xcb_disconnect(m_connection);
}

void XMouse::moveTo(const QPoint& place)
{
    fake(XCB_MOTION_NOTIFY, toThatPlace, place);
}

qint64 XMouse::press()
{
    return fake(XCB_BUTTON_PRESS, leftButton, {});
}

qint64 XMouse::release()
{
    return fake(XCB_BUTTON_RELEASE, leftButton, {});
}

qint64 XMouse::fake(unsigned char event, unsigned char detail, const QPoint& place)
{
    const qint64 now = monotonicNs();
    xcb_test_fake_input(m_connection, event, detail, XCB_CURRENT_TIME, m_root,
        static_cast<int16_t>(place.x()), static_cast<int16_t>(place.y()), 0);
    xcb_flush(m_connection);
    return now;
}
