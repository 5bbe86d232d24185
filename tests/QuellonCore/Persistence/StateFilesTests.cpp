#include "StateRecords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace quellon {
namespace {

/// One row of a table of docs/state-files.md.
struct DocumentedKey {
    std::string path; ///< As "records[].app".
    std::string value;
    std::string missing;

    /// Whether the keys below it are the user's data, or told elsewhere.
    [[nodiscard]] bool isLeaf() const { return value.starts_with("object:") || value.starts_with("as the"); }
};

std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> result;
    std::istringstream stream{text};
    for (std::string line; std::getline(stream, line);) result.push_back(line);
    return result;
}

/// The rows of the table in the section about `file`.
std::vector<DocumentedKey> documentedKeys(std::string_view file)
{
    std::vector<DocumentedKey> keys;
    bool isInSection = false;
    for (const std::string& line : lines(fileText(TEST_DATA "/../../docs/state-files.md"))) {
        if (line.starts_with("## ")) isInSection = line == "## `" + std::string{file} + "`";
        if (!isInSection || !line.starts_with("| `")) continue;
        const auto keyEnd = line.find("` | ");
        const auto valueEnd = line.rfind(" | ");
        keys.push_back({line.substr(3, keyEnd - 3), line.substr(keyEnd + 4, valueEnd - keyEnd - 4),
                        line.substr(valueEnd + 3, line.size() - valueEnd - 5)});
    }
    return keys;
}

const DocumentedKey* find(const std::vector<DocumentedKey>& keys, const std::string& path)
{
    const auto found = std::find_if(keys.begin(), keys.end(), [&](const auto& key) { return key.path == path; });
    return found != keys.end() ? &*found : nullptr;
}

/// Adds the paths of all keys of `json`, which stands at `path`, down to the leaves of `keys`.
void collectPaths(const Json& json, const std::string& path, const std::vector<DocumentedKey>& keys,
                  std::set<std::string>& into)
{
    if (const auto* key = find(keys, path); key != nullptr && key->isLeaf()) return;
    if (json.is_array()) {
        for (const Json& each : json) collectPaths(each, path + "[]", keys, into);
    } else if (json.is_object()) {
        for (const auto& [name, value] : json.items()) {
            const std::string below = path.empty() ? name : path + "." + name;
            into.insert(below);
            collectPaths(value, below, keys, into);
        }
    }
}

/// Takes the key at `path` out of `json`, out of every element where the path leads through an array.
void removeKey(Json& json, std::string_view path)
{
    const auto dot = path.find('.');
    std::string name{path.substr(0, dot)};
    if (dot == std::string_view::npos) {
        json.erase(name);
        return;
    }
    const bool isArray = name.ends_with("[]");
    if (isArray) name.resize(name.size() - 2);
    if (!name.empty() && !json.contains(name)) return;
    Json& below = name.empty() ? json : json[name];
    if (!isArray) return removeKey(below, path.substr(dot + 1));
    for (Json& each : below) removeKey(each, path.substr(dot + 1));
}

TEST(StateFiles, theDocumentedExamplesAreWhatIsReadAndWritten)
{
    for (const StateRecord& record : stateRecords) {
        SCOPED_TRACE(record.file);
        const auto example = parseJson(documented(std::string{record.file}));
        ASSERT_TRUE(example);
        const auto saved = record.reencode(example->dump());
        ASSERT_TRUE(saved);
        EXPECT_EQ(parseJson(*saved), example);
    }
}

TEST(StateFiles, theTablesHoldEveryKeyThatIsWrittenAndNoOther)
{
    for (const StateRecord& record : stateRecords) {
        SCOPED_TRACE(record.file);
        const auto keys = documentedKeys(record.file);
        std::set<std::string> told;
        for (const DocumentedKey& key : keys) EXPECT_TRUE(told.insert(key.path).second) << key.path << " twice";
        std::set<std::string> written;
        collectPaths(parseJson(documented(std::string{record.file})).value(), "", keys, written);
        EXPECT_EQ(told, written);
    }
}

TEST(StateFiles, aKeyMayBeMissingWhereTheTableSaysSo)
{
    for (const StateRecord& record : stateRecords) {
        for (const DocumentedKey& key : documentedKeys(record.file)) {
            SCOPED_TRACE(std::string{record.file} + ": " + key.path);
            EXPECT_FALSE(key.missing.empty());
            Json json = parseJson(documented(std::string{record.file})).value();
            const Json whole = json;
            removeKey(json, key.path);
            ASSERT_NE(json, whole);
            EXPECT_EQ(record.reencode(json.dump()).has_value(), key.missing != "required");
        }
    }
}

TEST(StateFiles, everyValueHasAType)
{
    for (const StateRecord& record : stateRecords) {
        const Json whole = parseJson(documented(std::string{record.file})).value();
        const Json& object = whole.is_array() ? whole.front() : whole;
        for (const auto& [key, value] : object.items()) {
            SCOPED_TRACE(std::string{record.file} + ": " + key);
            const bool isMirror =
                record.file == Persistence::settingsFile &&
                (key == "planGB" || key == "billingCycleStartDay" || key == "profile" || key == "rules");
            for (const Json& other :
                 {Json(true), Json(1), Json("text"), Json::array({Json::array()}), Json{{"key", Json::object()}}}) {
                if (other.type() == value.type() || (other.is_number() && value.is_number())) continue;
                Json json = whole;
                (json.is_array() ? json.front() : json)[key] = other;
                EXPECT_EQ(record.reencode(json.dump()).has_value(), isMirror) << other;
            }
        }
    }
}

UUID id(std::string_view text)
{
    return UUID::parse(text).value();
}

TEST(StateFiles, settingsExample)
{
    const PlanProfile phone{
        id("6F9619FF-8B86-4D01-B42D-00CF4FC964FF"),
        "Phone",
        30.0,
        1,
        UsageProfile::developer,
        {{id("0B0E5A52-7D3C-4E0C-9E57-3A2B6C1D4F01"), Seconds{60.0}, 48'318'382, ActionLevel::notify, true},
         {id("0B0E5A52-7D3C-4E0C-9E57-3A2B6C1D4F02"), Seconds{3600.0}, 375'809'638, ActionLevel::ask, true}},
        "budget.json"};
    const PlanProfile travel{
        id("C1D1E7A4-54F2-4B9B-8C6E-5B8A2F0D9E11"),
        "Travel SIM",
        2.5,
        20,
        UsageProfile::light,
        {{id("0B0E5A52-7D3C-4E0C-9E57-3A2B6C1D4F03"), Seconds{300.0}, 20'000'000, ActionLevel::enforce, false}},
        "budget-C1D1E7A4-54F2-4B9B-8C6E-5B8A2F0D9E11.json"};
    GuardSettings settings;
    settings.profiles = {phone, travel};
    settings.activeProfileID = travel.id;
    settings.lastProfileByInterface = {{"en0", phone.id}, {"en5", travel.id}};
    settings.sampleInterval = Seconds{2.5};
    settings.direction = CountDirection::incoming;
    settings.meteredOnly = false;
    settings.notify = false;
    settings.enforcementAction = EnforcementAction::terminate;
    settings.snoozeMinutes = 30.0;
    settings.appPolicies =
        AppPolicyTable{{{"Backup", AppPolicy::never}, {"Old Friend", AppPolicy::never}, {"npm", AppPolicy::always}}};
    settings.mutedAsksUntil = {{"Player", Date{Seconds{795'263'400.0}}}};
    settings.presetSeededApps = {"npm"};
    settings.protectedExtra = {"Old Friend"};
    settings.onboarded = true;
    settings.tetherHintDismissed = true;
    settings.updateCheckConsent = UpdateCheckConsent::granted;
    settings.updateLastCheckedAt = Date{Seconds{795'261'600.25}};
    settings.explainConsent = UpdateCheckConsent::denied;
    EXPECT_EQ(decodeSettings(documented("settings.json")), settings);
}

TEST(StateFiles, budgetExample)
{
    BudgetStore store;
    store.planGB = 30.0;
    store.billingCycleStartDay = 20;
    store.days = {{"2026-03-14", 734'003'200}, {"2026-03-15", 1'048'576}};
    store.calibrationOffsetBytes = -52'428'800;
    store.interfaceBaseline = {"en0", 987'654'321, Date{Seconds{795'261'600.25}}};
    store.unmeasuredGaps = 2;
    store.lastUnmeasuredGapAt = Date{Seconds{795'200'000.5}};
    EXPECT_EQ(decode<BudgetStore>(documented("budget.json")), store);
}

TEST(StateFiles, historyExample)
{
    using Kind = EnforcementHistory::Kind;
    EnforcementHistory history;
    history.records = {
        {"Player", Date{Seconds{795'250'000.0}}, 104'857'600, EnforcementAction::suspend, "100 MB / 1min", true,
         Kind::enforced},
        {"npm", Date{Seconds{795'261'600.25}}, 2'048, std::nullopt, std::nullopt, std::nullopt, Kind::asked},
    };
    history.lastNoticeAt = {{"Player", Date{Seconds{795'250'000.0}}}};
    EXPECT_EQ(decode<EnforcementHistory>(documented("enforcement-history.json")), history);
}

TEST(StateFiles, suspendedExample)
{
    const std::vector<SuspendedApp> suspended{
        {"Player", {501, 502}, {"Sun Mar 15 09:00:00 2026", ""}, 104'857'600, Date{Seconds{795'261'600.25}}},
    };
    EXPECT_EQ(decode<std::vector<SuspendedApp>>(documented("suspended.json")), suspended);
}

TEST(StateFiles, windowsExample)
{
    EXPECT_EQ(decode<WindowPlaces>(documented("windows.json")), (WindowPlaces{WindowPlaces::Place{480, 120}}));
}

TEST(StateFiles, explanationsExample)
{
    AppExplanation explanation;
    explanation.whatItIs = "Keeps a folder the same on several machines.";
    explanation.whyTraffic = "Uploads and downloads what changed, whole files at a time.";
    explanation.category = AppExplanation::Category::cloudSync;
    explanation.vendor = "Example Works";
    explanation.limitAdvice = AppExplanation::LimitAdvice::safe;
    explanation.limitNote = "Files stay as they are until it goes on.";
    explanation.source = AppExplanation::Source::cloud;
    const ExplanationCache cache{{{"foldersyncd", {explanation, Date{Seconds{795'261'600.25}}}}}};
    EXPECT_EQ(decode<ExplanationCache>(documented("explanations.json")), cache);
}

TEST(StateFiles, livenessExample)
{
    LivenessStats stats;
    stats.totalGuardedSeconds = 187'342.5;
    stats.recentPeaks = {{"Player", 734'003'200, "1h", Date{Seconds{795'255'000.0}}},
                         {"npm", 52'428'800, "1min", Date{Seconds{795'261'600.25}}}};
    stats.triggerCount = 12;
    stats.lastTriggerAt = Date{Seconds{795'250'000.0}};
    EXPECT_EQ(decode<LivenessStats>(documented("liveness.json")), stats);
}

} // namespace
} // namespace quellon
