#include "QuellonCore/Knowledge/KnowledgePack.h"
#include "QuellonCore/Knowledge/KnowledgeTexts.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace quellon {
namespace {

using Category = AppExplanation::Category;
using LimitAdvice = AppExplanation::LimitAdvice;
using Confidence = AppExplanation::Confidence;
using Keys = std::set<std::string>;

const std::map<Category, Keys> keysByCategory{
    {Category::browser,
     {"Arc", "Brave Browser", "Firefox", "Google Chrome", "Microsoft Edge", "Safari", "com.apple.WebKit.Networking"}},
    {Category::messaging,
     {"DingTalk", "Discord", "FaceTime", "Feishu", "Lark", "Messages", "Microsoft Teams", "QQ", "Signal", "Slack",
      "Telegram", "WeChat", "WhatsApp", "imagent", "zoom.us"}},
    {Category::media,
     {"Music", "NeteaseMusic", "News", "Photos", "Podcasts", "QQMusic", "Spotify", "TV", "VLC", "itunescloudd",
      "yt-dlp"}},
    {Category::cloudSync,
     {"BaiduNetdisk", "Dropbox", "Google Drive", "OneDrive", "bird", "cloudd", "cloudphotod", "fileproviderd",
      "photolibraryd", "syncthing"}},
    {Category::updater,
     {"Adobe Desktop Service", "App Store", "Creative Cloud", "GoogleUpdater", "JetBrains Toolbox",
      "Microsoft AutoUpdate", "appstoreagent", "softwareupdated", "storedownloadd"}},
    {Category::devTool,
     {"Android Studio",
      "Docker",
      "Docker Desktop",
      "OrbStack",
      "Simulator",
      "Terminal",
      "Visual Studio Code",
      "Xcode",
      "aria2c",
      "aws",
      "brew",
      "bun",
      "cargo",
      "com.docker.backend",
      "curl",
      "dart",
      "fastlane",
      "flutter",
      "gcloud",
      "gem",
      "gh",
      "git",
      "git-remote-https",
      "go",
      "gradle",
      "iTerm2",
      "java",
      "kubectl",
      "mvn",
      "node",
      "npm",
      "pip3",
      "pnpm",
      "pod",
      "python3",
      "rsync",
      "rustup",
      "screen",
      "ssh",
      "tmux",
      "uv",
      "wget",
      "xcodebuild",
      "yarn"}},
    {Category::system,
     {"Quellon",       "Quellon Pro",   "ScreenTimeAgent",   "apsd",          "assistantd",   "ciphermld",
      "dataaccessd",   "geod",          "identityservicesd", "mDNSResponder", "mobileassetd", "netbiosd",
      "nsurlsessiond", "parsecd",       "rapportd",          "rtcreportingd", "sharingd",     "sshd",
      "suggestd",      "syncdefaultsd", "syspolicyd",        "timed"}},
    {Category::security, {"1Password", "XProtectRemediator", "com.apple.Safari.SafeBrowsing.Service", "trustd"}},
    {Category::vpnProxy, {"Clash Verge", "ClashX", "Surge", "Tailscale", "WireGuard"}},
    {Category::game, {"Battle.net", "Epic Games Launcher", "Steam", "gamed"}},
    {Category::productivity,
     {"CalendarAgent", "Figma", "Linear", "Mail", "Maps", "Microsoft Outlook", "Notes", "Notion", "Obsidian", "Raycast",
      "Weather", "remindd"}},
    {Category::ai, {"ChatGPT", "Claude", "Cursor", "claude", "codex", "ollama"}},
};

const Keys keysToAvoid{"1Password",
                       "Quellon",
                       "Quellon Pro",
                       "Terminal",
                       "XProtectRemediator",
                       "apsd",
                       "claude",
                       "codex",
                       "com.apple.Safari.SafeBrowsing.Service",
                       "iTerm2",
                       "identityservicesd",
                       "imagent",
                       "mDNSResponder",
                       "screen",
                       "ssh",
                       "sshd",
                       "syspolicyd",
                       "timed",
                       "tmux",
                       "trustd"};

const Keys keysForCaution{"Arc",
                          "Brave Browser",
                          "CalendarAgent",
                          "ChatGPT",
                          "Clash Verge",
                          "ClashX",
                          "Claude",
                          "Cursor",
                          "DingTalk",
                          "Discord",
                          "Dropbox",
                          "FaceTime",
                          "Feishu",
                          "Figma",
                          "Firefox",
                          "Google Chrome",
                          "Google Drive",
                          "GoogleUpdater",
                          "Lark",
                          "Mail",
                          "Maps",
                          "Messages",
                          "Microsoft Edge",
                          "Microsoft Outlook",
                          "Microsoft Teams",
                          "Notion",
                          "OneDrive",
                          "Photos",
                          "QQ",
                          "Safari",
                          "Signal",
                          "Slack",
                          "Surge",
                          "Tailscale",
                          "Telegram",
                          "Visual Studio Code",
                          "WeChat",
                          "WhatsApp",
                          "WireGuard",
                          "bird",
                          "ciphermld",
                          "cloudd",
                          "cloudphotod",
                          "com.apple.WebKit.Networking",
                          "curl",
                          "dataaccessd",
                          "fastlane",
                          "fileproviderd",
                          "java",
                          "node",
                          "nsurlsessiond",
                          "photolibraryd",
                          "python3",
                          "rsync",
                          "syncthing",
                          "zoom.us"};

const Keys reviewedKeys{"Google Chrome",
                        "GoogleUpdater",
                        "Quellon",
                        "Quellon Pro",
                        "Terminal",
                        "apsd",
                        "ciphermld",
                        "claude",
                        "cloudd",
                        "codex",
                        "com.apple.Safari.SafeBrowsing.Service",
                        "dataaccessd",
                        "iTerm2",
                        "mDNSResponder",
                        "rtcreportingd",
                        "screen",
                        "ssh",
                        "sshd",
                        "syspolicyd",
                        "tmux"};

const ExplanationMap givenRows{
    {"Quellon",
     {.whatItIs = "This app — the hotspot data guard you are using right now.",
      .whyTraffic =
          "Almost none. Its only network call is the optional daily update check you can turn on or off in the panel.",
      .category = Category::system,
      .vendor = "Brennix",
      .limitAdvice = LimitAdvice::avoid,
      .limitNote = "It watches traffic; it barely creates any.",
      .confidence = Confidence::reviewed,
      .source = AppExplanation::Source::pack}},
    {"claude",
     {.whatItIs = "Claude Code, Anthropic's CLI coding agent.",
      .whyTraffic = "Streams model requests/responses while working; downloads happen in child processes it spawns.",
      .category = Category::ai,
      .vendor = "Anthropic",
      .limitAdvice = LimitAdvice::avoid,
      .limitNote = "Protected by default: freezing it kills the agent session driving your work.",
      .confidence = Confidence::reviewed,
      .source = AppExplanation::Source::pack}},
    {"Claude",
     {.whatItIs = "Claude desktop app (Anthropic's AI assistant).",
      .whyTraffic = "Chat streaming and file uploads; a normal GUI app, unlike the protected claude CLI.",
      .category = Category::ai,
      .vendor = "Anthropic",
      .limitAdvice = LimitAdvice::caution,
      .limitNote = std::nullopt,
      .confidence = Confidence::generated,
      .source = AppExplanation::Source::pack}},
    {"apsd",
     {.whatItIs = "Apple Push Notification daemon — the single pipe all push notifications arrive through.",
      .whyTraffic = "Keeps one persistent connection to Apple; heartbeat traffic is tiny (KBs).",
      .category = Category::system,
      .vendor = "Apple",
      .limitAdvice = LimitAdvice::avoid,
      .limitNote = "Freezing it stops iMessage, FaceTime and all push notifications.",
      .confidence = Confidence::reviewed,
      .source = AppExplanation::Source::pack}},
    {"Google Chrome",
     {.whatItIs = "Google's web browser (all its Helper processes are counted together here).",
      .whyTraffic =
          "Web browsing plus background sync, extension updates and prefetching; idle Chrome still chats ~10 KB/min.",
      .category = Category::browser,
      .vendor = "Google",
      .limitAdvice = LimitAdvice::caution,
      .limitNote = "Limiting it interrupts your own browsing.",
      .confidence = Confidence::reviewed,
      .source = AppExplanation::Source::pack}},
    {"nsurlsessiond",
     {.whatItIs = "Apple's shared background download/upload daemon; many apps hand it their transfers.",
      .whyTraffic = "Carries other apps' background transfers (App Store items, iCloud files, mail attachments) — "
                    "volume depends on who queued work.",
      .category = Category::system,
      .vendor = "Apple",
      .limitAdvice = LimitAdvice::caution,
      .limitNote = "The traffic belongs to other apps; identify the real requester before blaming it.",
      .confidence = Confidence::generated,
      .source = AppExplanation::Source::pack}},
    {"brew",
     {.whatItIs = "Homebrew package manager for macOS.",
      .whyTraffic = "Downloads formula bottles and casks; upgrades can pull GBs across many packages.",
      .category = Category::devTool,
      .vendor = "Homebrew",
      .limitAdvice = LimitAdvice::safe,
      .limitNote = "`brew upgrade` on a hotspot is the classic mistake this app exists for.",
      .confidence = Confidence::generated,
      .source = AppExplanation::Source::pack}},
    {"ollama",
     {.whatItIs = "Ollama, a local LLM runtime.",
      .whyTraffic = "Pulls language models — single models are typically 2–70 GB.",
      .category = Category::ai,
      .vendor = "Ollama",
      .limitAdvice = LimitAdvice::safe,
      .limitNote = "Never pull a model on a hotspot.",
      .confidence = Confidence::generated,
      .source = AppExplanation::Source::pack}},
    {"flutter",
     {.whatItIs = "Flutter SDK command-line tool.",
      .whyTraffic =
          "Downloads Dart packages, engine artifacts and platform toolchains — first runs pull hundreds of MB.",
      .category = Category::devTool,
      .vendor = "Google",
      .limitAdvice = LimitAdvice::safe,
      .limitNote = std::nullopt,
      .confidence = Confidence::generated,
      .source = AppExplanation::Source::pack}},
};

/// The keys of the rows for which `holds` is true.
template <typename Holds>
Keys keysOf(Holds holds)
{
    Keys keys;
    for (const auto& [key, row] : KnowledgePack::entries()) {
        if (holds(row)) keys.insert(key);
    }
    return keys;
}

TEST(KnowledgePack, hasTheseRowsInTheseCategories)
{
    std::size_t total = 0;
    for (const auto& [category, keys] : keysByCategory) {
        SCOPED_TRACE(enumTable(category).raw(category));
        EXPECT_EQ(keysOf([c = category](const AppExplanation& row) { return row.category == c; }), keys);
        total += keys.size();
    }
    EXPECT_EQ(total, 149U);
    EXPECT_EQ(KnowledgePack::entries().size(), 149U) << "no row has another category";
}

TEST(KnowledgePack, countsByCategory)
{
    const std::map<Category, std::size_t> expected{
        {Category::browser, 7},  {Category::messaging, 15}, {Category::media, 11},        {Category::cloudSync, 10},
        {Category::updater, 9},  {Category::devTool, 44},   {Category::system, 22},       {Category::security, 4},
        {Category::vpnProxy, 5}, {Category::game, 4},       {Category::productivity, 12}, {Category::ai, 6},
    };
    std::map<Category, std::size_t> counts;
    for (const auto& [key, row] : KnowledgePack::entries()) ++counts[row.category];
    EXPECT_EQ(counts, expected);
}

TEST(KnowledgePack, advises)
{
    const auto advised = [](LimitAdvice advice) {
        return keysOf([advice](const AppExplanation& row) { return row.limitAdvice == advice; });
    };
    EXPECT_EQ(keysToAvoid.size(), 20U);
    EXPECT_EQ(keysForCaution.size(), 56U);
    EXPECT_EQ(advised(LimitAdvice::avoid), keysToAvoid);
    EXPECT_EQ(advised(LimitAdvice::caution), keysForCaution);
    EXPECT_EQ(advised(LimitAdvice::safe).size(), 73U);
}

TEST(KnowledgePack, tellsWhatWasReviewed)
{
    EXPECT_EQ(reviewedKeys.size(), 20U);
    EXPECT_EQ(keysOf([](const AppExplanation& row) { return row.confidence == Confidence::reviewed; }), reviewedKeys);
    EXPECT_EQ(keysOf([](const AppExplanation& row) { return row.confidence == Confidence::generated; }).size(), 129U);
}

TEST(KnowledgePack, hasAVendorEverywhereAndFiftyNotes)
{
    EXPECT_EQ(keysOf([](const AppExplanation& row) { return row.vendor.has_value(); }).size(), 149U);
    EXPECT_EQ(keysOf([](const AppExplanation& row) { return row.limitNote.has_value(); }).size(), 50U);
    EXPECT_EQ(keysOf([](const AppExplanation& row) { return row.source == AppExplanation::Source::pack; }).size(),
              149U);
}

TEST(KnowledgePack, hasTheseRowsWordForWord)
{
    const ExplanationMap& entries = KnowledgePack::entries();
    for (const auto& [key, row] : givenRows) {
        SCOPED_TRACE(key);
        ASSERT_TRUE(entries.contains(key));
        EXPECT_EQ(entries.at(key).toJson(), row.toJson());
    }
    EXPECT_EQ(entries.at("Quellon Pro"), entries.at("Quellon"));
    EXPECT_EQ(entries.at("zoom.us").whyTraffic,
              "Meetings stream continuously — roughly 500 MB–1 GB per hour with video.");
    EXPECT_EQ(entries.at("Spotify").whyTraffic,
              "Streams music (~1 MB per minute) and pre-caches playlists; podcasts download in full.");
}

TEST(KnowledgePack, hasTextsThatAreFitToShow)
{
    ExplanationMap rows = KnowledgePack::entries();
    rows.erase("Quellon Pro"); // the same record as "Quellon"
    EXPECT_EQ(problemsOf(rows), std::vector<std::string>{});
}

TEST(KnowledgePack, isTheDocument)
{
    EXPECT_EQ(documentRows("knowledge-pack.json"), KnowledgePack::entries());
}

TEST(KnowledgePack, tellsWhereItComesFrom)
{
    EXPECT_TRUE(isDigest(KnowledgePack::sourceSHA256)) << KnowledgePack::sourceSHA256;
    EXPECT_TRUE(isDay(KnowledgePack::generatedAt)) << KnowledgePack::generatedAt;
}

TEST(KnowledgePack, isBuiltOnceForAllThreads)
{
    std::vector<const ExplanationMap*> seen(4);
    std::vector<std::thread> threads;
    threads.reserve(seen.size());
    for (auto& each : seen) threads.emplace_back([&each] { each = &KnowledgePack::entries(); });
    for (auto& each : threads) each.join();
    EXPECT_EQ(seen, std::vector(seen.size(), &KnowledgePack::entries()));
}

} // namespace
} // namespace quellon
