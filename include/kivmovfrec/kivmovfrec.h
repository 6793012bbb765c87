// The component's public API in one include: values and their VB-compatible conversions,
// database connection, suite services, records and enumerations, company context, the movement
// aggregate and the façade (with the main job and the agenda), the display of formulas and
// amounts, frequency codes, account checks, expression evaluation, schema installation.
#pragma once

#include "kivmovfrec/agenda.h"
#include "kivmovfrec/contexto.h"
#include "kivmovfrec/cuentas.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/ejecucion.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/enums.h"
#include "kivmovfrec/errors.h"
#include "kivmovfrec/evaluar.h"
#include "kivmovfrec/frecuencia.h"
#include "kivmovfrec/grupo_vinculado.h"
#include "kivmovfrec/install.h"
#include "kivmovfrec/lista_tareas.h"
#include "kivmovfrec/mf_tipo.h"
#include "kivmovfrec/mov_frecuente.h"
#include "kivmovfrec/presentacion.h"
#include "kivmovfrec/records.h"
#include "kivmovfrec/renglones_mf.h"
#include "kivmovfrec/services.h"
#include "kivmovfrec/simulacion.h"
#include "kivmovfrec/traza_fx.h"
#include "kivmovfrec/variant.h"
#include "kivmovfrec/vb.h"
