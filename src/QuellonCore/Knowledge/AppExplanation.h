#pragma once

#include "QuellonCore/Support/EnumTable.h"
#include "QuellonCore/Support/Json.h"

#include <functional>
#include <map>
#include <optional>
#include <string>

namespace quellon {

/// What a process is, why it uses the network, and what limiting it costs. Each field begins as what a JSON object
/// without its key gives.
struct AppExplanation {
    enum class Category {
        browser,
        messaging,
        media,
        cloudSync,
        updater,
        devTool,
        system,
        security,
        vpnProxy,
        game,
        productivity,
        ai,
        other,
    };
    /// What limiting the process costs the user. Advice to people: no rule reads it.
    enum class LimitAdvice { safe, caution, avoid };
    /// Whether a person has reviewed the texts.
    enum class Confidence { reviewed, generated };
    enum class Source { pack, cloud };

    static constexpr EnumTable<Category, 13> categories{{{
        {Category::browser, "browser", "Browser"},
        {Category::messaging, "messaging", "Messaging"},
        {Category::media, "media", "Media"},
        {Category::cloudSync, "cloud-sync", "Cloud sync"},
        {Category::updater, "updater", "Updater"},
        {Category::devTool, "dev-tool", "Developer tool"},
        {Category::system, "system", "System"},
        {Category::security, "security", "Security"},
        {Category::vpnProxy, "vpn-proxy", "VPN / proxy"},
        {Category::game, "game", "Games"},
        {Category::productivity, "productivity", "Productivity"},
        {Category::ai, "ai", "AI"},
        {Category::other, "other", "Other"},
    }}};
    static constexpr EnumTable<LimitAdvice, 3> limitAdvices{{{
        {LimitAdvice::safe, "safe", "Safe to limit"},
        {LimitAdvice::caution, "caution", "Limiting pauses sync or notifications"},
        {LimitAdvice::avoid, "avoid", "Avoid limiting"},
    }}};
    static constexpr EnumTable<Confidence, 2> confidences{{{
        {Confidence::reviewed, "reviewed", "Reviewed"},
        {Confidence::generated, "generated", "Generated"},
    }}};
    static constexpr EnumTable<Source, 2> sources{{{
        {Source::pack, "pack", "Knowledge pack"},
        {Source::cloud, "cloud", "Online lookup"},
    }}};
    friend constexpr const auto& enumTable(Category /*type*/) { return categories; }
    friend constexpr const auto& enumTable(LimitAdvice /*type*/) { return limitAdvices; }
    friend constexpr const auto& enumTable(Confidence /*type*/) { return confidences; }
    friend constexpr const auto& enumTable(Source /*type*/) { return sources; }

    std::string whatItIs;   ///< One sentence that names the process.
    std::string whyTraffic; ///< What its traffic is, and how much.
    Category category = Category::other;
    std::optional<std::string> vendor; ///< Who makes it.
    LimitAdvice limitAdvice = LimitAdvice::caution;
    std::optional<std::string> limitNote; ///< What breaks when it is limited.
    Confidence confidence = Confidence::generated;
    Source source = Source::pack;

    /// No key is required. A text that is no raw value gives `other`, `caution`, `generated` or `cloud`; another type
    /// than text makes the record unreadable.
    [[nodiscard]] static std::optional<AppExplanation> fromJson(const Json& json);
    /// All keys; `vendor` and `limitNote` only when they are there.
    [[nodiscard]] Json toJson() const;

    bool operator==(const AppExplanation&) const = default;
};

/// Explanations by the name of the process.
using ExplanationMap = std::map<std::string, AppExplanation, std::less<>>;

} // namespace quellon
