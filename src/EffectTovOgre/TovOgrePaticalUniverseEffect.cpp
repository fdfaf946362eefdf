// The class that hosts' pictures are drawn with, by its name.
#include "EffectTovOgre/TovOgrePaticalUniverseEffect.h"

#include "core/DynClass.h"

namespace {

DYN_CLASS::CFactory<TovOgrePaticalUniverseEffect> factory;

} // namespace
