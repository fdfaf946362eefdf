// The state of the broken television, which all nodes of the look share.
#pragma once

namespace KEXSDK::am {

/// For tests: the next picture is drawn as the first one of the process is.
void restartTelevision();

} // namespace KEXSDK::am
