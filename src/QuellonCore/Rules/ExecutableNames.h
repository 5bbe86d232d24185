#pragma once

#include "QuellonCore/Support/CaseFold.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quellon {

/// Names of executables in an order, each found in one step, without regard to case.
class ExecutableNames {
public:
    ExecutableNames() = default;
    /// A command without a slash is the kernel's name of a process, which ends after `kernelNameLength` bytes; 0 where
    /// commands are never cut.
    explicit ExecutableNames(std::vector<std::string> names, std::size_t kernelNameLength = 0);

    /// The name of a command's executable, as it stands here; null when it isn't here. Where a command that the kernel
    /// may have cut begins several names, the first of them. Valid for as long as the names.
    [[nodiscard]] const std::string* find(std::string_view command) const;

    /// In their order.
    [[nodiscard]] const std::vector<std::string>& names() const { return names_; }

    bool operator==(const ExecutableNames& other) const
    {
        return names_ == other.names_ && kernelNameLength_ == other.kernelNameLength_;
    }

private:
    struct Place {
        std::size_t index; ///< In `names_`.
        bool isCut;        ///< The key is only the beginning of that name.
    };

    std::vector<std::string> names_;
    std::size_t kernelNameLength_ = 0;
    std::unordered_map<std::string, Place, CaseFoldedHash, EqualCaseFolded> places_;
};

} // namespace quellon
