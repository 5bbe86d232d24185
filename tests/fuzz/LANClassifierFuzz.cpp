#include "Check.h"
#include "QuellonCore/Measurement/LANClassifier.h"
#include "QuellonCore/Support/Text.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace quellon {
namespace {

std::string inCapitals(std::string_view text)
{
    std::string result{text};
    for (char& c : result) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return result;
}

void checkEndpoint(const std::string& endpoint)
{
    const auto host = LANClassifier::host(endpoint);
    if (host) {
        FUZZ_CHECK(!host->empty());
        FUZZ_CHECK(fuzz::isWithin(endpoint, *host));
        FUZZ_CHECK(!fuzz::contains(*host, "%"));
    }
    const bool isLAN = LANClassifier::isLANEndpoint(endpoint);
    FUZZ_CHECK(LANClassifier::isLANEndpoint("\t " + endpoint + " \t") == isLAN);
    FUZZ_CHECK(LANClassifier::isPrivate(inCapitals(endpoint)) == LANClassifier::isPrivate(endpoint));
    FUZZ_CHECK(LANClassifier::port(endpoint + ":5353") == 5353);
    const bool isWildcard = trimmed(endpoint).starts_with('*');
    FUZZ_CHECK(!(isWildcard && isLAN));
    FUZZ_CHECK(LANClassifier::isLANConnection("udp4 *:5353<->" + endpoint) == (isLAN || isWildcard));
    FUZZ_CHECK(LANClassifier::isLANConnection("udp4 *:49152<->" + endpoint) == isLAN);
}

void checkConnection(std::string_view connection)
{
    const bool isLAN = LANClassifier::isLANConnection(connection);
    const auto arrow = connection.find("<->");
    if (arrow == std::string_view::npos) {
        FUZZ_CHECK(!isLAN);
        return;
    }
    const std::string_view remote = connection.substr(arrow + 3);
    if (!trimmed(remote).starts_with('*')) FUZZ_CHECK(isLAN == LANClassifier::isLANEndpoint(remote));
    checkEndpoint(std::string{remote});
}

} // namespace
} // namespace quellon

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quellon;
    const std::string text(data, data + size);
    std::string_view rest = text;
    while (!rest.empty()) {
        std::string_view line = takeLine(rest);
        while (!line.empty()) {
            const std::string_view field = takeUntil(line, ',');
            checkEndpoint(std::string{field});
            checkConnection(field);
        }
    }
    return 0;
}
