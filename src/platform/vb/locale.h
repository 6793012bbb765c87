// The locale used when values are shown to people or read from their typing: Spanish, with a
// day-first short date, capitalised weekday and month names and a decimal comma. Text written
// into SQL or formula expressions never goes through a locale (see Invariant()). The struct is
// public (kivmovfrec/vb.h), with the conversions hosts use.
#pragma once

#include "kivmovfrec/vb.h"
