#pragma once

#include "QuellonCore/Diagnostics/NetworkLog.h"
#include "QuellonCore/Host/Host.h"
#include "QuellonCore/Knowledge/ExplanationFetching.h"

#include <cstddef>
#include <optional>
#include <string>

namespace quellon {

/// Asks the lookup service: a POST of the name, as the panel shows it, and of nothing else.
class NetworkExplanationFetcher final : public ExplanationFetching {
public:
    static constexpr Seconds timeoutSeconds{15.0};
    static constexpr std::size_t maximumPayloadBytes = 65'536;

    /// What a reply says beside the explanation.
    struct RecognitionFlag {
        std::optional<bool> recognized;

        [[nodiscard]] static std::optional<RecognitionFlag> fromJson(const Json& json);
        bool operator==(const RecognitionFlag&) const = default;
    };

    /// The product's lookup service.
    [[nodiscard]] static std::string endpoint();

    /// `host`'s parts and `log` must outlive the fetcher and its requests.
    NetworkExplanationFetcher(Host host, std::string userAgent, std::string endpoint, NetworkLog& log);

    /// Each exchange leaves one entry in the log, whatever became of it. What is accepted is never more than
    /// `generated` by `cloud`. A name that is not UTF-8 can't be sent, and counts as a failed transfer without one.
    void fetchExplanation(const std::string& label, Done done) override;

private:
    Host host_;
    std::string userAgent_;
    std::string endpoint_;
    NetworkLog& log_;
};

} // namespace quellon
