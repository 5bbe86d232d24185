#include "QuellonCore/Presentation/AboutInfo.h"

#include <fmt/format.h>

namespace quellon::AboutInfo {

namespace {

/// `text` as a value in the query of a mailto URL.
std::string escaped(std::string_view text)
{
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~()";
    std::string result;
    for (const char each : text) {
        if (plain.find(each) != std::string_view::npos)
            result += each;
        else
            result += fmt::format("%{:02X}", static_cast<unsigned char>(each));
    }
    return result;
}

} // namespace

std::string displayVersion(std::optional<std::string_view> shortVersion, std::optional<std::string_view> build)
{
    if (!shortVersion || shortVersion->empty()) return "dev";
    if (!build || build->empty()) return std::string{*shortVersion};
    return fmt::format("{} ({})", *shortVersion, *build);
}

std::string feedbackURL(std::string_view version)
{
    return fmt::format("mailto:{}?subject={}", contactEmail, escaped(fmt::format("Quellon feedback ({})", version)));
}

std::string diagnostics(AppEdition edition, std::string_view version, std::string_view systemName, std::string_view os,
                        bool isMetered, bool isRunning)
{
    return fmt::format("{} {}\n{} {}\nGuard: {}\nNetwork: {}", displayName(edition), version, systemName, os,
                       isRunning ? "on" : "off", isMetered ? "metered" : "not metered");
}

} // namespace quellon::AboutInfo
