#include "Canvas.h"
#include "Picture.h"
#include "Studio.h"

#include <algorithm>
#include <array>

namespace quellon {

namespace {

constexpr int gap = 24;

/// Two pictures side by side, the left one light, the right one dark.
struct Pair {
    const char* name;
    const char* left;
    const char* right;
};

constexpr std::array<Pair, 7> pairs{{
    {"panel", "panel-guarding", "panel-guarding"},
    {"panel-more", "panel-expanded", "panel-tether"},
    {"settings", "settings-plan", "settings-rules"},
    {"apps", "settings-apps", "settings-details"},
    {"log", "settings-log", "settings-plan-question"},
    {"onboarding", "onboarding", "onboarding"},
    {"toasts", "toast-stack", "toast-stack"},
}};

QImage drawn(const std::vector<Picture>& all, const char* name, bool dark)
{
    const auto found = std::ranges::find(all, QString::fromLatin1(name), &Picture::name);
    Studio::light(dark);
    return found != all.end() ? found->draw() : QImage{};
}

} // namespace

std::vector<Picture> readmePictures()
{
    std::vector<Picture> result;
    for (const Pair& pair : pairs) {
        const auto draw = [pair] {
            const auto all = pictures();
            const QImage left = drawn(all, pair.left, false);
            return Canvas::row({left, drawn(all, pair.right, true)}, gap, 0, Qt::transparent);
        };
        result.push_back({QString::fromLatin1(pair.name), draw});
    }
    return result;
}

} // namespace quellon
