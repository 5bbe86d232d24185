#include "QuellonCore/Rules/ExecutableNames.h"

#include "QuellonCore/Support/Text.h"

#include <utility>

namespace quellon {

ExecutableNames::ExecutableNames(std::vector<std::string> names, std::size_t kernelNameLength)
    : names_{std::move(names)}, kernelNameLength_{kernelNameLength}
{
    for (std::size_t i = 0; i < names_.size(); ++i) places_.try_emplace(names_[i], Place{i, false});
    if (kernelNameLength_ == 0) return;
    for (std::size_t i = 0; i < names_.size(); ++i) {
        if (names_[i].size() > kernelNameLength_)
            places_.try_emplace(names_[i].substr(0, kernelNameLength_), Place{i, true});
    }
}

const std::string* ExecutableNames::find(std::string_view command) const
{
    const std::string_view name = lastPathComponent(command);
    const auto found = places_.find(name);
    if (found == places_.end()) return nullptr;
    const auto [index, isCut] = found->second;
    if (isCut && (name.size() != kernelNameLength_ || command.find('/') != std::string_view::npos)) return nullptr;
    return &names_[index];
}

} // namespace quellon
