// The broken television rolls for all its nodes together.
#pragma once

namespace KEXSDK::am {

/// For tests: the next picture is the first one of the process.
void restartTelevision();

} // namespace KEXSDK::am
