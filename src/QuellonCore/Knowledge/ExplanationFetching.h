#pragma once

#include "QuellonCore/Knowledge/AppExplanation.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace quellon {

/// Why a lookup gave nothing.
struct ExplainError {
    enum class Kind {
        badStatus,   ///< Another status than 200, 429 and 503.
        transport,   ///< There was no reply.
        unavailable, ///< The service is busy.
        malformedPayload,
        unrecognized, ///< The service does not know the name.
    };

    Kind kind = Kind::transport;
    int status = 0; ///< Of `badStatus`.

    /// What the user is told.
    [[nodiscard]] std::string_view message() const;

    bool operator==(const ExplainError&) const = default;
};

/// Where explanations of unknown names come from. Main thread only.
class ExplanationFetching {
public:
    using Result = std::variant<AppExplanation, ExplainError>;
    using Done = std::function<void(const Result& result)>;

    virtual ~ExplanationFetching() = default;

    /// Asks for one name. `done` is called once, in a later turn, unless the program ends first.
    virtual void fetchExplanation(const std::string& label, Done done) = 0;
};

/// What the engine needs for lookups.
struct ExplainContext {
    std::shared_ptr<ExplanationFetching> fetcher;
};

} // namespace quellon
