#include <gtest/gtest.h>

#include <tuple>

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

// Every refusal names the field and keeps the text; what() is the sentence the user reads.
TEST(TextoRechazado, ComillaNulUtf8InvalidoYLargoSeRechazan) {
  const std::string largo(255, 'x');
  std::string acentos;  // width counts characters, not bytes
  for (int i = 0; i < 255; ++i) acentos += "á";
  EXPECT_NO_THROW(RechazarComilla("Alquiler \"local\"", "Nombre"));
  for (const std::string& cabe : {largo, acentos}) {
    EXPECT_NO_THROW(RechazarTextoNoAlmacenable(cabe, "Nombre", 255));
  }
  EXPECT_NO_THROW(RechazarTextoNoAlmacenable(std::string(100000, 'x'), "Memo"));  // no limit

  const char* kLargo = "El campo Nombre admite hasta 255 caracteres.";
  const char* kNoEsTexto = "El campo Nombre contiene caracteres que no son texto válido.";
  const struct {
    std::string texto;
    MotivoRechazo motivo;
    const char* mensaje;
  } casos[] = {
      {"D'Angelo", MotivoRechazo::Comilla,
       "El campo Nombre no puede contener comillas simples (')."},
      {largo + "y", MotivoRechazo::Largo, kLargo},
      {acentos + "á", MotivoRechazo::Largo, kLargo},
      {std::string("a\0b", 3), MotivoRechazo::NoEsTexto, kNoEsTexto},
      {"Caf\xC3", MotivoRechazo::NoEsTexto, kNoEsTexto},
  };
  for (const auto& c : casos) {
    try {
      if (c.motivo == MotivoRechazo::Comilla) RechazarComilla(c.texto, "Nombre");
      RechazarTextoNoAlmacenable(c.texto, "Nombre", 255);
      ADD_FAILURE() << "se esperaba TextoRechazado: " << c.texto;
    } catch (const TextoRechazado& e) {
      EXPECT_EQ(std::tuple(e.campo(), e.motivo(), e.texto(), std::string(e.what())),
                std::tuple("Nombre", c.motivo, c.texto, c.mensaje));
    }
  }
  EXPECT_EQ(LiteralTexto("''"), "''''''");
}

// The search values go beside the text in the order their placeholders appear; the one not in
// use is a Null (matches nothing); the searched text is never expanded nor quoted.
TEST(ConsultaLookup, MarcadoresDeContextoYDeBusqueda) {
  constexpr const char* kQ =
      "Select [pCodCta]N From T Where E = [pEmp] And M = [pIDMov] And P = [pPreID] And (K "
      "[pFindKey] or I [pfindid])";
  const ContextoLookup ctx{.empresa = 3, .id_mov = 12, .pre_id = 4, .mostrar_codigo_cta = false};
  const auto por_id = PrepararBusquedaPorID(kQ, ctx, 120);
  EXPECT_EQ(por_id.sql, "Select N From T Where E = 3 And M = 12 And P = 4 And (K  = ? or I  = ?)");
  EXPECT_EQ(por_id.valores, (DbParams{Variant::Null(), Variant(int32_t{120})}));
  ContextoLookup codigos = ctx;
  codigos.mostrar_codigo_cta = true;
  const auto por_clave = PrepararBusquedaPorClave(kQ, codigos, "D'Angelo [pEmp]");
  EXPECT_EQ(por_clave.sql,
            "Select rTrim(CueCodigo) + ' ' + N From T Where E = 3 And M = 12 And P = 4 And (K  = "
            "? or I  = ?)");
  EXPECT_EQ(por_clave.valores, (DbParams{Variant("D'Angelo [pEmp]"), Variant::Null()}));
}

TEST(ContadorDeTabla, MenosUnoEsError8000DeDBFncs) {
  testing::FakeDBFncs falla(/*falla=*/true);
  try {
    (void)NuevoID(falla, "genMovimientosFrecuentes", 0);
    FAIL() << "se esperaba ComponentError";
  } catch (const ComponentError& e) {
    EXPECT_EQ(e.number(), 8000);
    EXPECT_EQ(e.source(), "DBFncs");
    EXPECT_STREQ(e.description(), "Resultado de la función get_TableCounter = -1");
  }
  testing::FakeDBFncs bien;
  EXPECT_EQ(NuevoID(bien, "genRecurrencias", 0), 100);
  EXPECT_EQ(bien.tablas, std::vector<std::string>{"genRecurrencias"});
}

TEST(Idioma, ValorNumericoDelAjusteOCero) {
  testing::FakeDBFncs dbf;
  const std::pair<Variant, int> casos[] = {
      {Variant("2"), 2}, {Variant(1.0), 1}, {Variant("inglés"), 0}, {Variant(), 0}};
  for (const auto& [ajuste, idioma] : casos) {
    dbf.idioma = ajuste;
    EXPECT_EQ(LeerIdioma(dbf), idioma) << DebugString(ajuste);
  }
}

// Applied to a company with journal 5 and voucher type 6.
TEST(EmpPrms, LibroYTipoDeComprobante) {
  const struct {
    const char* prms;
    int libro, tcom;
  } casos[] = {
      {"lib:3|tcom:12", 3, 12},
      {"LIB:4|Tcom:7", 4, 7},                    // any case
      {"lib:abc|tcom:|lib:99999|otro:1", 5, 6},  // not numeric or too large: ignored
      {"lib:2|lib:Lib:8", 8, 6},                 // every "lib:" removed; the last wins
      {" lib:9|xlib:9", 5, 6},                   // the prefix must begin the item
  };
  for (const auto& c : casos) {
    clsEmpresa emp;
    emp.Libro(5);
    emp.TipoComprobante(6);
    emp.AplicarPrms(c.prms);
    EXPECT_EQ(emp.Libro(), c.libro) << c.prms;
    EXPECT_EQ(emp.TipoComprobante(), c.tcom) << c.prms;
  }
}

}  // namespace
}  // namespace kivmovfrec
