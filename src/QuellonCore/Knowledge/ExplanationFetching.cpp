#include "QuellonCore/Knowledge/ExplanationFetching.h"

namespace quellon {

std::string_view ExplainError::message() const
{
    switch (kind) {
    case Kind::unavailable:
        return "Lookup service is busy — try again later.";
    case Kind::unrecognized:
        return "The lookup service didn't recognize this name.";
    case Kind::badStatus:
    case Kind::transport:
    case Kind::malformedPayload:
        break;
    }
    return "Couldn't look this up right now.";
}

} // namespace quellon
