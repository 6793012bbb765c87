// Hostile text through every entry point that takes text from a person: the display-form reader
// and the saving of a line formula, the calculation of a stored formula and of lines in memory,
// legend expansion, the script host, and the name and comment of a movement. Nothing may crash,
// hang, let an exception escape a member that traps its errors, or write: a formula text gives
// a clear error (or its plain value), and a text that is data is kept exactly as typed.
#include <optional>
#include <string>
#include <vector>

#include "fachada_fixture.h"
#include "formula/formula_mf.h"
#include "formula/reglas_fx.h"
#include "platform/script/script_host.h"
#include "platform/vb/text.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "storage/sql_texto.h"
#include "storage/tabla_movimientos.h"

namespace kivmovfrec::testing {
namespace {

// Movement 18 of the demo company: line 1 holds 30000, line 2 (Orden 2) a formula, line 3 the
// difference. Every hostile formula goes into line 2.
constexpr int32_t kMov = 18;
constexpr int16_t kOrden = 2;
constexpr const char* kFormulaOriginal = "[1:145;1;1]*0.5";

// A text of the corpus. `sql` set: the text is that statement inside a [query] block, and the
// script host gets it through rdoCBase.OpenResultset.
struct Hostil {
  std::optional<double> Valor() const {
    return script && !script->empty() ? std::optional(std::stod(*script)) : std::nullopt;
  }

  std::string nombre;
  std::string texto;
  bool lee = false;  // the display-form reader accepts it (blocks are copied)
  // The script host's result text (nothing: an error); a number is also what the line computes
  // to, anything else leaves the line without a result.
  std::optional<std::string> script = std::nullopt;
  std::string motivo = "";  // part of the explanation of the failing line and of the script error
  std::string sql = "";
};

constexpr const char* kSoloLectura = "solo puede leer datos";
constexpr const char* kUnaSentencia = "una sola sentencia";
constexpr const char* kNoModifica = "no puede modificar la base de datos";

Hostil Consulta(std::string nombre, std::string sql, std::string motivo) {
  return {
      std::move(nombre), "[query]" + sql + "[/query]", true, std::nullopt, std::move(motivo), sql};
}

std::vector<Hostil> Corpus() {
  std::string mega;
  while (mega.size() < (1u << 20)) mega += "1+";
  mega += "1";
  return {
      // A VBScript comment: the script is empty, so the line has no number.
      {"comilla", "O'Brien", true, ""},
      {"inyeccion", "'); Delete From genMovimientosFrecuentes; --", true, ""},
      {"comentario", "1 -- 2", true, "3"},
      {"separador", "1; 2", true},
      // Quoted arguments reach lookup SQL: a quote is refused before any is built.
      {"argumento_comilla",
       "Saldo al día de hoy(\"'); Delete From genMovimientosFrecuentes; --\")"},
      {"argumento_corchete", "Pedir valor(\"a]; [query]Delete From genRecurrencias\")"},
      Consulta("delete", "Delete From genMovimientosFrecuentes", kSoloLectura),
      Consulta("update", "Update genMovimientosFrecuentes Set MFrNombre = 'x'", kSoloLectura),
      // Without commas: the script host's retry with "," read as "." would change the statement.
      Consulta("insert", "Insert Into genContadores Select * From genContadores", kSoloLectura),
      Consulta("drop", "Drop Table genRecurrencias", kSoloLectura),
      Consulta("segunda", "Select 1; Delete From genMovimientosFrecuentes", kUnaSentencia),
      Consulta("segunda_sin_blanco", "Select 1;Drop Table genRecurrencias", kUnaSentencia),
      // PostgreSQL refuses it inside the read-only transaction, SQLite cannot parse it.
      Consulta("cte_delete", "With x As (Delete From genRecurrencias Returning 1) Select 1", ""),
      // A comment inside a query hides the rest of it: one statement, nothing deleted.
      {"comentario_sql", "[query]Select 5 -- ; Delete From genRecurrencias[/query]", true, "5", "",
       "Select 5 -- ; Delete From genRecurrencias"},
      {"script_execute",
       "[codescript]rdoCBase.Execute(\"Delete From genRecurrencias\")[/codescript]", true,
       std::nullopt, kNoModifica},
      {"megabyte", mega, true, std::to_string(mega.size() / 2 + 1)},
      {"parentesis", std::string(100000, '(') + "1" + std::string(100000, ')'), true},
      {"corchetes", std::string(100000, '[') + "1" + std::string(100000, ']')},
      {"abre_corchete", "["},
      {"cierra_corchete", "]", true},
      {"dos_parentesis", "((", true},
      {"cierra_parentesis", ")", true},
      {"c3_suelto", "\xC3"},
      {"ff", "1+\xFF"},
      {"utf8_truncado", "2*\xF0\x9F\x98"},
      {"nul", std::string("1\0002", 3)},
  };
}

class EntradaHostil : public Fachada {
 protected:
  Snapshot Todo() {
    auto tablas = MovementTables();
    tablas.insert(tablas.end(), {"genParametros", "cceCuentas", "cceAsientos"});
    return TakeSnapshot(*cn, tablas);
  }
  void SinCambios(const Snapshot& antes) {
    const Snapshot despues = Todo();
    for (const auto& [tabla, filas] : antes) {
      EXPECT_EQ(despues.at(tabla), filas) << "la tabla " << tabla << " cambió";
    }
  }
  // Writes `formula` into line kOrden of kMov through an updatable set (bound, never SQL text).
  void GrabarFormula(const std::string& formula) {
    auto rs = cn->OpenResultset("Select * From genRenglonMovFrecuentes Where RMFMovimiento = " +
                                std::to_string(kMov) + " And RMFOrden = " + std::to_string(kOrden));
    ASSERT_FALSE(rs->Eof());
    rs->Edit();
    rs->Set("RMFFormula", Variant(formula));
    rs->Update();
  }
  std::string FormulaGuardada() {
    return vb::CStr(Scalar(*cn,
                           "Select RMFFormula From genRenglonMovFrecuentes Where "
                           "RMFMovimiento = " +
                               std::to_string(kMov) + " And RMFOrden = " + std::to_string(kOrden)));
  }
  formula::clsFormulaMF Lector() {
    clsEmpresa empresa;
    empresa.Load(1, *cn);
    return formula::clsFormulaMF(cn, formula::ContextoFormula::De(empresa, kMov));
  }
  // PostgreSQL cannot hold these bytes in a text column (invalid UTF-8, NUL).
  bool Representable(const std::string& texto) const {
    return !postgres() || (texto.find('\0') == std::string::npos && vb::IsValidUtf8(texto));
  }
  // The outcome of computing line kOrden holding `h`: its value, or the catalogue message shown
  // once and the trace saying why.
  void Resultado(const Hostil& h, bool ok, const clsRenglonesMF& lineas, size_t mensajes_antes) {
    EXPECT_EQ(ok, h.Valor().has_value()) << mf.UltimaTrazaFx().error;
    if (h.Valor()) {
      EXPECT_DOUBLE_EQ(lineas.Renglon(kOrden)->ImporteMF(), *h.Valor());
      return;
    }
    ASSERT_EQ(Mensajes().size(), mensajes_antes + 1);
    EXPECT_EQ(Mensajes().back().request.text, resources::Texto(msg::kFormulaSinResultado));
    const auto& traza = mf.UltimaTrazaFx().lineas;
    ASSERT_GE(traza.size(), 2u);
    EXPECT_FALSE(traza[1].ok);
    EXPECT_FALSE(traza[1].error.empty());
    std::string detalle = traza[1].error;
    for (const auto& e : traza[1].elementos) detalle += " | " + e.detalle;
    const std::string motivo = h.motivo.empty() && !h.sql.empty() ? "la consulta falló" : h.motivo;
    EXPECT_NE(detalle.find(motivo), std::string::npos) << detalle;
  }
};

TEST_P(EntradaHostil, LectorDeFormaVisibleYGrabadoDeLaFormula) {
  auto lector = Lector();
  for (const Hostil& h : Corpus()) {
    SCOPED_TRACE(h.nombre);
    const Snapshot antes = Todo();
    const formula::LecturaFormula l = lector.LeerVisible(h.texto);
    EXPECT_EQ(l.ok, h.lee) << l.error;
    if (!l.ok) {
      // Position of the failure, in code points of the text, and why.
      EXPECT_GE(l.posicion, 1);
      EXPECT_LE(static_cast<size_t>(l.posicion), h.texto.size() + 1);
      EXPECT_FALSE(l.error.empty());
      EXPECT_EQ(l.Resultado(), ":e:" + std::to_string(l.posicion));
      SinCambios(antes);
      continue;
    }
    // What reads back is kept as typed; after the movement's formula rules the locked save
    // changes exactly that line's formula.
    EXPECT_EQ(l.formula, h.texto);
    ASSERT_TRUE(mf.LoadMF(kMov));
    auto lineas = mf.EstructuraMovFrec()->Renglones();
    lineas->Renglon(kOrden)->Formula(l.formula);
    std::vector<formula::LineaRegla> reglas;
    for (int16_t i = 1; i <= lineas->QRenglones(); ++i) {
      const clsRegRenglonMF& r = *lineas->Renglon(i);
      reglas.push_back(
          {{r.Cuenta(), r.Proyecto(), r.Departamento()}, r.AlDebe(), r.Formula(), r.ImporteMF()});
    }
    // None of them holds a reference, so the formula rules have nothing to refuse.
    EXPECT_FALSE(formula::ValidarFormulas(reglas, &lector).has_value());
    ASSERT_EQ(mf.SaveMovimientoFrecuenteConBloqueo(), kMov);
    EXPECT_EQ(FormulaGuardada(), h.texto);
    // Putting the old formula back gives the database exactly as it was: nothing else changed.
    GrabarFormula(kFormulaOriginal);
    SinCambios(antes);
  }
}

TEST_P(EntradaHostil, CalculoDeLaFormulaGuardadaYEnMemoria) {
  for (const Hostil& h : Corpus()) {
    SCOPED_TRACE(h.nombre);
    if (!Representable(h.texto)) {
      // The engine refuses the bytes with its own message and keeps the old formula.
      EXPECT_THROW(GrabarFormula(h.texto), DbError);
      EXPECT_EQ(FormulaGuardada(), kFormulaOriginal);
    } else {
      GrabarFormula(h.texto);
      ASSERT_EQ(FormulaGuardada(), h.texto);
      const Snapshot antes = Todo();
      const size_t mensajes = Mensajes().size();
      mf.CleanEstructura();
      const bool ok = mf.SetCalculoFormulasMF(kMov, true);
      Resultado(h, ok, *mf.EstructuraMovFrec()->Renglones(), mensajes);
      SinCambios(antes);
    }
    // The same text in lines held in memory, recomputed in place.
    GrabarFormula(kFormulaOriginal);
    const Snapshot antes = Todo();
    mf.CleanEstructura();
    ASSERT_TRUE(mf.LoadMF(kMov));
    auto lineas = mf.EstructuraMovFrec()->Renglones();
    lineas->Renglon(kOrden)->Formula(h.texto);
    const size_t mensajes = Mensajes().size();
    Resultado(h, mf.RecalcularFormulasMF(*lineas, 1, true), *lineas, mensajes);
    SinCambios(antes);
  }
}

TEST_P(EntradaHostil, LeyendaYScript) {
  for (const Hostil& h : Corpus()) {
    SCOPED_TRACE(h.nombre);
    const Snapshot antes = Todo();
    // No macro in any of them: the legend is the text itself, and nothing is reported.
    const size_t mensajes = Mensajes().size();
    EXPECT_EQ(mf.InterpretarFormulaLeyenda(h.texto, kHoy), h.texto);
    EXPECT_EQ(Mensajes().size(), mensajes);

    // The script host: the statement through rdoCBase, or the text itself.
    std::string texto = h.texto;
    if (!h.sql.empty()) {
      texto = "rdoCBase.OpenResultset(\"" + h.sql + "\")(0)";
    } else if (texto.starts_with("[codescript]")) {
      texto = texto.substr(12, texto.size() - 12 - 13);
    }
    const script::HostResult r = script::EvaluateScript(cn.get(), texto, true);
    if (h.script) {
      EXPECT_TRUE(r.ok) << r.error.description;
      EXPECT_EQ(r.text, *h.script);
    } else {
      EXPECT_FALSE(r.ok) << r.text;
      EXPECT_NE(r.error.number, 0);
      EXPECT_FALSE(r.error.description.empty());
      EXPECT_NE(r.error.description.find(h.motivo), std::string::npos) << r.error.description;
    }
    SinCambios(antes);
  }
}

constexpr const char* kOtros = "genMovimientosFrecuentes Where MFrID <> 18";

TEST_P(EntradaHostil, NombreYComentarioSeGuardanTalCualOSeRechazanSinEscribir) {
  for (const Hostil& h : Corpus()) {
    SCOPED_TRACE(h.nombre);
    const Snapshot antes = Todo();
    mf.CleanEstructura();
    ASSERT_TRUE(mf.LoadMF(kMov));
    const Snapshot otros = TakeSnapshot(*cn, {kOtros});
    const std::string nombre = mf.EstructuraMovFrec()->MovFrecuente()->Nombre();
    const std::string memo = mf.EstructuraMovFrec()->MovFrecuente()->Memo();
    mf.EstructuraMovFrec()->MovFrecuente()->Nombre(h.texto);
    mf.EstructuraMovFrec()->MovFrecuente()->Memo(h.texto);
    // A quote, bytes that are not text and a name past the column's width are refused before
    // any SQL is built, on every engine alike; the transaction leaves every table as it was.
    std::optional<std::string> rechazo;
    if (storage::TieneComilla(h.texto)) {
      rechazo = "El campo Nombre no puede contener comillas simples (').";
    } else if (h.texto.find('\0') != std::string::npos || !vb::IsValidUtf8(h.texto)) {
      rechazo = "El campo Nombre contiene caracteres que no son texto válido.";
    } else if (vb::Len(h.texto) > storage::kLargoNombre) {
      rechazo = "El campo Nombre admite hasta 255 caracteres.";
    }
    const int32_t id = mf.SaveMovimientoFrecuenteConBloqueo();
    if (rechazo) {
      EXPECT_EQ(id, 0);
      EXPECT_EQ(mf.UltimoError(), *rechazo);  // the caller's reason to show
      SinCambios(antes);
      try {
        mf.SaveMovimientoFrecuente();
        ADD_FAILURE() << "el texto debe rechazarse";
      } catch (const storage::TextoRechazado& e) {
        EXPECT_EQ(e.campo(), "Nombre");
        EXPECT_EQ(e.what(), *rechazo);
      }
      SinCambios(antes);
      continue;
    }
    ASSERT_EQ(id, kMov);
    FachadaPropia otro(OpenAnother());
    ASSERT_TRUE(otro.mf.LoadMF(kMov));
    EXPECT_EQ(otro.mf.EstructuraMovFrec()->MovFrecuente()->Nombre(), h.texto);
    EXPECT_EQ(otro.mf.EstructuraMovFrec()->MovFrecuente()->Memo(), h.texto);
    // Every other movement is untouched...
    EXPECT_EQ(TakeSnapshot(*cn, {kOtros}), otros);
    // ...and writing the old name and comment back gives the database exactly as it was, so
    // nothing but those two columns had changed.
    mf.EstructuraMovFrec()->MovFrecuente()->Nombre(nombre);
    mf.EstructuraMovFrec()->MovFrecuente()->Memo(memo);
    ASSERT_EQ(mf.SaveMovimientoFrecuenteConBloqueo(), kMov);
    SinCambios(antes);
  }
}

KMF_INSTANTIATE_ENGINES(EntradaHostil);

}  // namespace
}  // namespace kivmovfrec::testing
