#pragma once

#include "QuellonCore/Host/IdentifierSource.h"

#include <random>

namespace quellon {

/// Random identifiers (version 4) from the system's source of random bits.
class RandomIdentifiers final : public IdentifierSource {
public:
    [[nodiscard]] UUID next() override;

private:
    std::random_device device_;
};

} // namespace quellon
