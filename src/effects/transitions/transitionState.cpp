// The one state object.
#include "effects/transitions/transitionState.h"

namespace transitions {

TransitionState& transitionState()
{
    static TransitionState& state = *new TransitionState;
    return state;
}

} // namespace transitions
