#pragma once

namespace quellon::testing {

/// Counts, from its making on, the sockets of the Internet's families that any thread of this process opens, however
/// briefly. The test program has a socket() of its own for that, which hands on to the system. What the C library opens
/// for itself, such as to look up a host, does not pass by it.
class SocketWatch {
public:
    SocketWatch() : before_{everOpened()} {}

    /// Opened since, IPv4 and IPv6, of any kind.
    [[nodiscard]] int opened() const { return everOpened() - before_; }

    /// Sockets of these families that are open now, as the system tells.
    [[nodiscard]] static int openNow();

private:
    int before_;

    [[nodiscard]] static int everOpened();
};

} // namespace quellon::testing
