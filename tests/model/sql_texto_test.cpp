#include <gtest/gtest.h>

#include "fakes.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/errors.h"
#include "storage/consulta_lookup.h"
#include "storage/contador.h"
#include "storage/parametros.h"
#include "storage/sql_texto.h"

namespace kivmovfrec {
namespace {

using namespace storage;

// 2024-03-05 14:07:09
constexpr Date kFecha{45356.0 + (14 * 3600 + 7 * 60 + 9) / 86400.0};

TEST(FechaSQL, UsaDelimitadorYFormatoDados) {
  ParametrosBD p;
  p.caracter_fecha = "#";
  p.formato_fecha = "mm/dd/yyyy";
  EXPECT_EQ(FechaSQL(kFecha, p), "#03/05/2024#");
  p.caracter_fecha = "'";
  p.formato_fecha = "yyyy-mm-dd hh:nn:ss";
  EXPECT_EQ(FechaSQL(kFecha, p), "'2024-03-05 14:07:09'");
  EXPECT_EQ(FormatoFechaBD(kFecha, p), "2024-03-05 14:07:09");
}

TEST(Comillas, TextoConComillaSeRechazaNombrandoElCampo) {
  EXPECT_NO_THROW(RechazarComilla("Alquiler \"local\"", "Nombre"));
  try {
    RechazarComilla("D'Angelo", "Nombre");
    FAIL() << "se esperaba TextoRechazado";
  } catch (const TextoRechazado& e) {
    EXPECT_EQ(e.campo(), "Nombre");
    EXPECT_EQ(e.texto(), "D'Angelo");
    EXPECT_NE(std::string(e.what()).find("Nombre"), std::string::npos);
  }
}

TEST(Comillas, TextoQueLaBaseNoGuardariaTalCualSeRechazaNombrandoElMotivo) {
  const std::string largo(255, 'x');
  EXPECT_NO_THROW(RechazarTextoNoAlmacenable(largo, "Nombre", 255));
  EXPECT_NO_THROW(RechazarTextoNoAlmacenable(std::string(100000, 'x'), "Memo"));  // no limit
  // Width counts characters, not bytes: 255 accented letters fit.
  std::string acentos;
  for (int i = 0; i < 255; ++i) acentos += "á";
  EXPECT_NO_THROW(RechazarTextoNoAlmacenable(acentos, "Nombre", 255));
  struct Caso {
    std::string texto;
    MotivoRechazo motivo;
    const char* mensaje;
  };
  const Caso casos[] = {
      {largo + "y", MotivoRechazo::Largo, "El campo Nombre admite hasta 255 caracteres."},
      {acentos + "á", MotivoRechazo::Largo, "El campo Nombre admite hasta 255 caracteres."},
      {std::string("a\0b", 3), MotivoRechazo::NoEsTexto,
       "El campo Nombre contiene caracteres que no son texto válido."},
      {"Caf\xC3", MotivoRechazo::NoEsTexto,
       "El campo Nombre contiene caracteres que no son texto válido."},
  };
  for (const Caso& c : casos) {
    try {
      RechazarTextoNoAlmacenable(c.texto, "Nombre", 255);
      ADD_FAILURE() << "se esperaba TextoRechazado";
    } catch (const TextoRechazado& e) {
      EXPECT_EQ(e.motivo(), c.motivo);
      EXPECT_STREQ(e.what(), c.mensaje);
      EXPECT_EQ(e.texto(), c.texto);
    }
  }
}

TEST(Comillas, LiteralDeBusquedaDuplicaLasComillas) {
  EXPECT_EQ(LiteralTexto("Caja"), "'Caja'");
  EXPECT_EQ(LiteralTexto("O'Brien"), "'O''Brien'");
  EXPECT_EQ(LiteralTexto("''"), "''''''");
}

constexpr const char* kQCuenta =
    "Select CueID, [pCodCta]CueNombre, [pCodCta]CueNombre From cceCuentas Where CueIDEmpresa = "
    "[pEmp] And (CueID [pFindID] or [pCodCta]CueNombre [pFindKey]) And CueEsCarpeta = 0 Order "
    "by CueNombre";

TEST(ConsultaLookup, BusquedaPorIdAnulaLaClave) {
  ContextoLookup ctx{.empresa = 3, .id_mov = 12, .pre_id = 0, .mostrar_codigo_cta = false};
  EXPECT_EQ(PrepararBusquedaPorID(kQCuenta, ctx, 120),
            "Select CueID, CueNombre, CueNombre From cceCuentas Where CueIDEmpresa = 3 And "
            "(CueID  = 120 or CueNombre  = 'abc121ptokiv121cba') And CueEsCarpeta = 0 Order by "
            "CueNombre");
}

TEST(ConsultaLookup, BusquedaPorClaveConCodigosDeCuenta) {
  ContextoLookup ctx{.empresa = 1, .id_mov = 0, .pre_id = 0, .mostrar_codigo_cta = true};
  EXPECT_EQ(PrepararBusquedaPorClave(kQCuenta, ctx, "1.1 Caja"),
            "Select CueID, rTrim(CueCodigo) + ' ' + CueNombre, rTrim(CueCodigo) + ' ' + "
            "CueNombre From cceCuentas Where CueIDEmpresa = 1 And (CueID  = "
            "'abc121ptokiv121cba' or rTrim(CueCodigo) + ' ' + CueNombre  = '1.1 Caja') And "
            "CueEsCarpeta = 0 Order by CueNombre");
}

TEST(ConsultaLookup, ClaveConComillaOMarcadoresNoRompeLaConsulta) {
  ContextoLookup ctx{.empresa = 1, .id_mov = 9, .pre_id = 4};
  const std::string sql = PrepararBusquedaPorClave(
      "Select X From T Where A [pFindKey] And M = [pIDMov] And P = [pPreID] And B [pfindid]", ctx,
      "D'Angelo [pEmp]");
  EXPECT_EQ(sql,
            "Select X From T Where A  = 'D''Angelo [pEmp]' And M = 9 And P = 4 And B  = "
            "'abc121ptokiv121cba'");
}

TEST(ContadorDeTabla, MenosUnoEsError8000DeDBFncs) {
  testing::FakeDBFncs falla(/*falla=*/true);
  Parametros().idioma = 0;
  try {
    (void)NuevoID(falla, "genMovimientosFrecuentes");
    FAIL() << "se esperaba ComponentError";
  } catch (const ComponentError& e) {
    EXPECT_EQ(e.number(), 8000);
    EXPECT_EQ(e.source(), "DBFncs");
    EXPECT_STREQ(e.description(), "Resultado de la función get_TableCounter = -1");
    EXPECT_STREQ(e.what(), e.description());
  }
  testing::FakeDBFncs bien;
  EXPECT_EQ(NuevoID(bien, "genRecurrencias"), 100);
  EXPECT_EQ(bien.tablas, std::vector<std::string>{"genRecurrencias"});
}

TEST(Idioma, ValorNumericoDelAjusteOCero) {
  testing::FakeDBFncs dbf;
  const std::pair<Variant, int> casos[] = {
      {Variant("2"), 2}, {Variant(1.0), 1}, {Variant("inglés"), 0}, {Variant(), 0}};
  for (const auto& [ajuste, idioma] : casos) {
    Parametros().idioma = 7;
    dbf.idioma = ajuste;
    LeerIdioma(dbf);
    EXPECT_EQ(Parametros().idioma, idioma) << DebugString(ajuste);
  }
}

TEST(EmpPrms, LibroYTipoDeComprobanteEnCualquierCaso) {
  clsEmpresa emp;
  emp.AplicarPrms("lib:3|tcom:12");
  EXPECT_EQ(emp.Libro() * 100 + emp.TipoComprobante(), 312);
  emp.AplicarPrms("LIB:4|Tcom:7");
  EXPECT_EQ(emp.Libro() * 100 + emp.TipoComprobante(), 407);
}

TEST(EmpPrms, ValorNoNumericoOFueraDeRangoNoCambiaNada) {
  clsEmpresa emp;
  emp.Libro(5);
  emp.TipoComprobante(6);
  emp.AplicarPrms("lib:abc|tcom:|lib:99999|otro:1");
  EXPECT_EQ(emp.Libro(), 5);
  EXPECT_EQ(emp.TipoComprobante(), 6);
}

TEST(EmpPrms, SeQuitanTodasLasAparicionesYElUltimoManda) {
  clsEmpresa emp;
  // Every "lib:" of the item is removed, whatever its case: "lib:Lib:8" reads as 8.
  emp.AplicarPrms("lib:2|lib:Lib:8");
  EXPECT_EQ(emp.Libro(), 8);
  // An item must begin with its prefix.
  emp.AplicarPrms(" lib:9|xlib:9");
  EXPECT_EQ(emp.Libro(), 8);
}

}  // namespace
}  // namespace kivmovfrec
