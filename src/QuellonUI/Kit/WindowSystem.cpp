#include "QuellonUI/Kit/WindowSystem.h"

#include <QGuiApplication>

#ifdef QUELLON_XCB
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#endif

namespace quellon {

#ifdef QUELLON_XCB

bool hasCompositor()
{
    auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // Offscreen there is such an interface, too, but nothing behind it.
    xcb_connection_t* const connection = x11 != nullptr ? x11->connection() : nullptr;
    if (connection == nullptr) return true;
    // Whoever composes the windows of the first screen owns this selection.
    constexpr std::string_view name = "_NET_WM_CM_S0";
    const auto atomCookie = xcb_intern_atom(connection, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom{
        xcb_intern_atom_reply(connection, atomCookie, nullptr), &std::free};
    if (!atom || atom->atom == XCB_ATOM_NONE) return false;
    const auto ownerCookie = xcb_get_selection_owner(connection, atom->atom);
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> owner{
        xcb_get_selection_owner_reply(connection, ownerCookie, nullptr), &std::free};
    return owner && owner->owner != XCB_WINDOW_NONE;
}

#else

bool hasCompositor()
{
    return true;
}

#endif

bool canPlaceWindows()
{
    return !QGuiApplication::platformName().startsWith(QLatin1String{"wayland"});
}

bool seesPointerEverywhere()
{
    return !qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

} // namespace quellon
