#pragma once

#include "QuellonCore/Persistence/StateRecords.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quellon {

/// A state folder in which everything textual is somebody's secret: the documented examples, with another text in the
/// place of each key and each value that the program reads as a mere text. The names of budget files stay: what is in
/// the folder is listed by name, whoever named it.
class SecretState {
public:
    /// What every secret holds, and nothing else in the world.
    static constexpr std::string_view mark = "geheim";

    SecretState()
    {
        for (const StateRecord& record : stateRecords) {
            Json json = parseJson(documented(std::string{record.file})).value();
            record_ = &record;
            whole_ = &json;
            hide(json);
            files_.emplace_back(record.file, json.dump());
        }
        files_.emplace_back("budget-C1D1E7A4-54F2-4B9B-8C6E-5B8A2F0D9E11.json", text(Persistence::budgetFile));
        files_.emplace_back("ledger.json.tmp", text(Persistence::ledgerFile).substr(0, 60));
        files_.emplace_back("notifications.log", "[2026-03-15 10:00:00 +0000] " + secret() + "\n");
    }

    /// Name and content of each file.
    [[nodiscard]] const std::vector<std::pair<std::string, std::string>>& files() const { return files_; }
    /// How many texts are hidden in them.
    [[nodiscard]] std::size_t count() const { return count_; }

private:
    const StateRecord* record_ = nullptr;
    Json* whole_ = nullptr;
    std::size_t count_ = 0;
    std::vector<std::pair<std::string, std::string>> files_;

    [[nodiscard]] const std::string& text(std::string_view name) const
    {
        std::size_t i = 0;
        while (files_[i].first != name) ++i;
        return files_[i].second;
    }

    std::string secret()
    {
        constexpr std::array<std::string_view, 7> forms{"Geheim {}",    "geheim{}",         "/home/geheim/{}",
                                                        "~/geheim/{}",  "geheim{}.example", "Frau 云盘 {} é",
                                                        "app:geheim.{}"};
        std::string result{forms[count_ % forms.size()]};
        result.replace(result.find("{}"), 2, std::string{mark} + std::to_string(count_));
        ++count_;
        return result;
    }

    /// Whether the program reads the file as it is now, and writes the text in it again.
    [[nodiscard]] bool isKept(const std::string& text) const
    {
        const auto saved = record_->reencode(whole_->dump());
        return saved && saved->find(Json(text).dump()) != std::string::npos;
    }

    void hideValue(Json& value)
    {
        const Json before = value;
        const std::string text = secret();
        value = text;
        if (!isKept(text)) value = before;
    }

    void hideKey(Json& object, const std::string& key)
    {
        const Json before = object;
        const std::string text = secret();
        object[text] = object[key];
        object.erase(key);
        if (!isKept(text)) object = before;
    }

    void hide(Json& json)
    {
        if (json.is_string()) return hideValue(json);
        if (json.is_array()) {
            for (Json& item : json) hide(item);
        }
        if (!json.is_object()) return;
        std::vector<std::string> keys;
        for (const auto& [key, value] : json.items()) keys.push_back(key);
        for (const std::string& key : keys) {
            if (key != "budgetFile") hide(json[key]);
            hideKey(json, key);
        }
    }
};

} // namespace quellon
