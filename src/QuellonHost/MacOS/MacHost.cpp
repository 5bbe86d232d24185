#include "QuellonHost/MacOS/MacHost.h"

#include <pthread/qos.h>

namespace quellon {

MacHost::MacHost() : runLoop_{[] { (void)pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0); }} {}

MacHost::~MacHost()
{
    commands_.cancel();
}

Host MacHost::host()
{
    return {clock_, runLoop_, commands_, processes_, files_, addresses_, log_, identifiers_, http_, Platform::macOS()};
}

} // namespace quellon
