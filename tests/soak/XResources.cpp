#include "soak/XResources.h"

#include <QGuiApplication>
#include <QWindow>

#ifdef TAVORAN_XRES
#include <cstdlib>
#include <memory>
#include <string>
#include <xcb/res.h>
#endif

using namespace Qt::StringLiterals;

XResources XResources::ofThisProcess()
{
    XResources resources;
#ifdef TAVORAN_XRES
    if (QGuiApplication::platformName() != "xcb"_L1 || QGuiApplication::allWindows().isEmpty())
        return resources;
    struct Free {
        void operator()(void* answer) const { std::free(answer); }
    };
    // A connection of its own: any of a client's ids stands for the client.
    static xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    QWindow* known = nullptr;
    for (QWindow* window : QGuiApplication::allWindows()) {
        if (window->handle())
            known = window;
    }
    if (!known)
        return resources;
    const auto cookie = xcb_res_query_client_resources(connection, static_cast<uint32_t>(known->winId()));
    const std::unique_ptr<xcb_res_query_client_resources_reply_t, Free> reply(
        xcb_res_query_client_resources_reply(connection, cookie, nullptr));
    if (!reply)
        return resources;
    for (auto type = xcb_res_query_client_resources_types_iterator(reply.get()); type.rem > 0;
         xcb_res_type_next(&type)) {
        const std::unique_ptr<xcb_get_atom_name_reply_t, Free> name(xcb_get_atom_name_reply(
            connection, xcb_get_atom_name(connection, type.data->resource_type), nullptr));
        if (!name)
            continue;
        const std::string text(xcb_get_atom_name_name(name.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())));
        const int count = static_cast<int>(type.data->count);
        resources.all += count;
        if (text == "WINDOW")
            resources.windows += count;
        else if (text == "PIXMAP")
            resources.pixmaps += count;
    }
#endif
    return resources;
}
