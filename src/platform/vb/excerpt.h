// A value quoted in a message for people, cut when it is long: a 10 MB text pasted into a field
// must not come back whole in the message that refuses it (nor fill a log or a terminal).
// ShortForMessage is public (kivmovfrec/vb.h); it runs in one pass over the bytes, without
// copying the text.
#pragma once

#include "kivmovfrec/vb.h"
