#include "Check.h"
#include "QuellonProbe/ApplicationPath.h"
#include "QuellonProbe/BusMessage.h"
#include "QuellonProbe/InetSocket.h"
#include "QuellonProbe/KernelNetwork.h"
#include "QuellonProbe/Netlink.h"
#include "QuellonProbe/Proc.h"
#include "QuellonProbe/RouteRole.h"
#include "QuellonProbe/Text.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace quellon {
namespace {

bool isWithin(Bytes whole, Bytes part)
{
    return part.empty() || (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

void checkAttributes(Bytes whole, int depth)
{
    Bytes rest = whole;
    std::size_t left = rest.size() + 1;
    while (const auto next = Netlink::takeAttribute(rest)) {
        FUZZ_CHECK(isWithin(whole, next->value));
        FUZZ_CHECK(rest.size() < left);
        left = rest.size();
        if (depth > 0) checkAttributes(next->value, depth - 1);
    }
    FUZZ_CHECK(rest.empty());
}

void checkBody(Bytes body)
{
    checkAttributes(body, 2);
    if (const auto link = KernelMessage::link(body)) FUZZ_CHECK(link->index > 0 && !link->name.empty());
    if (const auto address = KernelMessage::address(body)) FUZZ_CHECK(!addressText(address->local).empty());
    if (const auto socket = SocketDiagnosis::parse(body)) {
        const auto label = connectionLabel(socket->ends, "wlan0");
        FUZZ_CHECK(fuzz::contains(label, "<->") && label.find_first_of(",\n") == label.npos);
    }
    if (const auto route = KernelMessage::route(body)) {
        FUZZ_CHECK(route->gateway.empty() || !addressText(route->gateway).empty());
        FUZZ_CHECK(fuzz::contains(RouteRole::text(*route, "wlan0"), "\n  interface: wlan0\n"));
    }
}

void checkNetlink(Bytes datagram)
{
    Bytes rest = datagram;
    while (const auto message = Netlink::takeMessage(rest)) {
        FUZZ_CHECK(isWithin(datagram, message->body));
        checkBody(message->body);
    }
    FUZZ_CHECK(rest.empty());
    checkBody(datagram);
}

void checkBus(std::string_view bytes)
{
    const auto length = BusWire::length(bytes);
    FUZZ_CHECK(length.has_value() == (bytes.size() >= 16));
    const auto message = BusWire::decode(bytes);
    if (!message) return;
    FUZZ_CHECK(length == bytes.size());
    FUZZ_CHECK(bytes.ends_with(message->body));
    FUZZ_CHECK(!BusWire::decode(bytes.substr(0, bytes.size() - 1)));
    if (const auto text = BusWire::text(*message)) FUZZ_CHECK(text->size() + 5 <= message->body.size());
    if (BusWire::variantNumber(*message)) FUZZ_CHECK(message->body.size() >= 8);
}

void checkTexts(const std::string& text)
{
    const auto clean = cleanName(text, Commas::replaced);
    FUZZ_CHECK(!fuzz::contains(clean, "\n") && !fuzz::contains(clean, ",") && !fuzz::contains(clean, "\t"));
    FUZZ_CHECK(cleanName(clean, Commas::replaced) == clean);
    FUZZ_CHECK(clean.empty() == text.empty());
    const auto comm = text.substr(0, 200);
    const auto stat = ProcFolder::parseStat("1 (" + comm + ") S 2 3 1 0 -1 0 1 2 3 4 5 6 7 8 20 0 1 0 4 9\n");
    FUZZ_CHECK(stat && stat->comm == comm && stat->parent == 2 && stat->group == 3 && stat->startTicks == 4);
    (void)ProcFolder::parseStat(text);
    FUZZ_CHECK(ApplicationPath::stable("/snap/x/1/" + text) == ApplicationPath::stable("/snap/x/22/" + text));
    FUZZ_CHECK(ApplicationPath::stable(text).size() <= text.size());
    const auto host = ApplicationPath::outOfSandbox("/app/bin/x", text);
    if (host) FUZZ_CHECK(host->front() == '/' && host->ends_with("/files/bin/x"));
}

} // namespace
} // namespace quellon

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(data, data + size);
    quellon::checkNetlink(std::as_bytes(std::span{data, size}));
    quellon::checkBus(text);
    quellon::checkTexts(text);
    return 0;
}
