#pragma once

#include "QuellonCore/Host/InterfaceAddresses.h"

namespace quellon {

/// The machine's addresses as the system lists them.
class PosixInterfaceAddresses final : public InterfaceAddresses {
public:
    [[nodiscard]] std::vector<InterfaceAddress> ipv4Addresses() const override;
};

} // namespace quellon
