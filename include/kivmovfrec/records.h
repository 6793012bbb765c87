// The three records of a frequent movement: header, line and schedule.
#pragma once

#include "kivmovfrec/reg_movimiento_frecuente.h"
#include "kivmovfrec/reg_recurrencia.h"
#include "kivmovfrec/reg_renglon_mf.h"
