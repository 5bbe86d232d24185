#pragma once

#include "QuellonCore/Host/Clock.h"
#include "QuellonCore/Host/CommandRunner.h"
#include "QuellonCore/Host/FileStore.h"
#include "QuellonCore/Host/HttpClient.h"
#include "QuellonCore/Host/IdentifierSource.h"
#include "QuellonCore/Host/InterfaceAddresses.h"
#include "QuellonCore/Host/LogSink.h"
#include "QuellonCore/Host/Platform.h"
#include "QuellonCore/Host/ProcessControl.h"
#include "QuellonCore/Host/RunLoop.h"

namespace quellon {

/// Everything that the engine has of the world. The parts outlive whoever holds a `Host`.
struct Host {
    Clock& clock;
    RunLoop& runLoop;
    CommandRunner& commands;
    ProcessControl& processes;
    FileStore& files;
    InterfaceAddresses& addresses;
    LogSink& log;
    IdentifierSource& identifiers;
    HttpClient& http;
    Platform platform;
};

} // namespace quellon
