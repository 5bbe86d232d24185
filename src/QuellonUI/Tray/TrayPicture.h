#pragma once

#include "QuellonCore/Presentation/Tint.h"
#include "QuellonCore/Presentation/TrayModel.h"

#include <QColor>
#include <QImage>

#include <array>
#include <string>

namespace quellon {

/// What can be seen of the tray item: a symbol and, where the host has no room for a text beside it, a few characters
/// over it.
struct TrayPicture {
    /// The heights in pixels that trays ask for at the usual scales, ascending.
    static constexpr std::array sizes{22, 24, 32, 44, 48, 64};

    std::string symbol;
    Tint tint = Tint::secondary;
    std::string badge; ///< Empty for none.

    [[nodiscard]] static TrayPicture of(const TrayModel& model, bool withBadge);

    /// The picture on transparent ground, `size` pixels wide and high. Nobody tells how dark a panel is, so its colours
    /// are such as can be told from white and from black. Main thread only.
    [[nodiscard]] QImage image(int size) const;

    bool operator==(const TrayPicture&) const = default;
};

/// The colour of a tint on a panel that may be light or dark.
[[nodiscard]] QColor trayColour(Tint tint);

} // namespace quellon
