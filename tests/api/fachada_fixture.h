// Shared setup of the façade tests: a fresh demo database on each engine (KMF_INSTANTIATE_ENGINES;
// a plain TEST_F on it runs on SQLite), scripted services with "today" fixed at 10/11/2026, and
// a connected façade for company 1.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>

#include "install/demo_db.h"
#include "kivmovfrec/kivmovfrec.h"
#include "platform/suite/clock.h"
#include "platform/suite/rights.h"
#include "platform/suite/scripted.h"
#include "platform/vb/convert.h"
#include "support/db_snapshot.h"
#include "support/demo_engine.h"

namespace kivmovfrec::testing {

inline const Date kHoy = suite::SerialOf(2026, 11, 10);

// Puts a new entry of company 1 named `nombre` in the façade's current movement, with a line on
// each of `cuentas` (the first one on the debit side) carrying the name as its detail.
inline void AsientoNuevo(clsMovFrecuente& mf, const std::string& nombre,
                         std::initializer_list<int32_t> cuentas = {}) {
  mf.CleanEstructura();
  auto e = mf.EstructuraMovFrec();
  e->MovFrecuente()->Empresa(1);
  e->MovFrecuente()->Tipo(enuTipoMovFrec::Asiento);
  e->MovFrecuente()->Nombre(nombre);
  for (int32_t cuenta : cuentas) {
    auto r = std::make_shared<clsRegRenglonMF>();
    r->Cuenta(cuenta);
    r->AlDebe(e->Renglones()->QRenglones() == 0);
    r->Detalle(nombre);
    e->Renglones()->AddRenglon(r);
  }
}

// A connected façade of company 1 over its own connection and scripted services (questions
// answered Yes): another user, another process, or a connection that fails on purpose.
struct FachadaPropia {
  explicit FachadaPropia(std::shared_ptr<Connection> c) : cn(std::move(c)) {
    sv = suite::ScriptedServices::Make(cn, kHoy);
    sv.messages->DefaultAnswer(kMsgYes);
    mf.Servicios(sv.Bundle());
    mf.Connect(cn);
    mf.Empresa(1);
  }
  std::shared_ptr<Connection> cn;
  suite::ScriptedServices sv;
  clsMovFrecuente mf;
};

class Fachada : public DemoEngineTest {
 protected:
  void SetUpDatabase() override {
    DemoEngineTest::SetUpDatabase();
    sv = suite::ScriptedServices::Make(cn, kHoy);
    mf.Servicios(sv.Bundle());
    mf.Connect(cn);
    mf.Empresa(1);
  }
  // One column of one movement.
  Variant Mov(int32_t id, const std::string& columna) {
    return Scalar(*cn, "Select " + columna +
                           " From genMovimientosFrecuentes Where MFrID = " + std::to_string(id));
  }
  int32_t Estado(int32_t id) { return vb::CLng(Mov(id, "MFrEstado")); }
  // The schedule of a movement as stored.
  clsRegRecurrencia Agenda(int32_t id) {
    clsMFTipo leido;
    EXPECT_TRUE(leido.Load(*cn, id));
    return *leido.Recurrencia();
  }
  Snapshot Tablas() { return TakeSnapshot(*cn, MovementTables()); }
  const std::vector<suite::ScriptedMessages::Shown>& Mensajes() { return sv.messages->shown(); }

  suite::ScriptedServices sv;
  clsMovFrecuente mf;
};

}  // namespace kivmovfrec::testing
