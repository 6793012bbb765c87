// The component's public API in one include: values, database connection, suite services,
// records and enumerations, company context, the movement aggregate and the façade, schema
// installation.
#pragma once

#include "kivmovfrec/contexto.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/enums.h"
#include "kivmovfrec/errors.h"
#include "kivmovfrec/install.h"
#include "kivmovfrec/mf_tipo.h"
#include "kivmovfrec/mov_frecuente.h"
#include "kivmovfrec/records.h"
#include "kivmovfrec/renglones_mf.h"
#include "kivmovfrec/services.h"
#include "kivmovfrec/variant.h"
