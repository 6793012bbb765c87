#include "ui/links/frm_vincular.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

#include "platform/vb/convert.h"
#include "platform/vb/locale.h"
#include "platform/vb/text.h"
#include "resources/catalogue.h"
#include "resources/help_topics.h"
#include "resources/msg.h"
#include "ui/links/texto_vinculos.h"

namespace kivmovfrec::ui {

namespace {

constexpr std::string_view kColumnas =
    "Select MFrID, MFrTipo, MFrMovVinculado, MFrMVOrden, MFrNombre, EmpNombre, EmpID ";

std::string Lista(const std::vector<int32_t>& ids) {
  std::string out;
  for (const int32_t id : ids) out += (out.empty() ? "" : ",") + std::to_string(id);
  return out;
}

// Grid columns: the visible ones of the header, then the hidden keys.
enum Col { kTilde, kOrden, kTipo, kNombre, kEmpresa, kId, kGrupo, kEmpId };

struct Movimiento {
  int32_t id = 0;
  int32_t tipo = 0;
  int32_t grupo = 0;  // MFrMovVinculado, 0 when not linked
  int32_t orden = 0;  // MFrMVOrden
  std::string nombre;
  std::string empresa;
  int32_t emp_id = 0;
};

// The rows of a query over kColumnas, each movement once, in query order.
std::vector<Movimiento> Leer(Connection& cn, const std::string& sql) {
  const auto entero = [](const Variant& v) {
    return v.IsNull() || v.IsEmpty() ? 0 : vb::CLng(v, vb::Locale::Invariant());
  };
  const auto texto = [](const Variant& v) {
    return v.IsNull() || v.IsEmpty() ? std::string()
                                     : vb::Trim(vb::CStr(v, vb::Locale::Invariant()));
  };
  std::vector<Movimiento> out;
  std::set<int32_t> vistos;
  for (auto rs = cn.OpenReadOnly(sql); !rs->Eof(); rs->MoveNext()) {
    Movimiento m{entero(rs->Get("MFrID")),
                 entero(rs->Get("MFrTipo")),
                 entero(rs->Get("MFrMovVinculado")),
                 entero(rs->Get("MFrMVOrden")),
                 texto(rs->Get("MFrNombre")),
                 texto(rs->Get("EmpNombre")),
                 entero(rs->Get("EmpID"))};
    if (vistos.insert(m.id).second) out.push_back(std::move(m));
  }
  return out;
}

}  // namespace

std::string SqlCandidatos(int32_t movimiento, FiltroVincular filtro, bool todas_las_empresas,
                          const std::vector<int32_t>& empresas,
                          const std::vector<int32_t>& vinculados) {
  std::string sql = std::string(kColumnas) +
                    " From genMovimientosFrecuentes, cceEmpresas  Where MFrID <> " +
                    std::to_string(movimiento) +
                    " And MFrRecurrencia Is Null And MFrEmpresa = EmpID "
                    " And (MFrDelSistema Is Null or MFrDelSistema = 0) And MFrEstado = 0";
  switch (filtro) {
    case FiltroVincular::Todos:
      sql += " And MFrTipo In (1, 2, 4)";
      break;
    case FiltroVincular::Asientos:
      sql += " And MFrTipo In (1, 4)";
      break;
    case FiltroVincular::Comprobantes:
      sql += " And MFrTipo = 2";
      break;
  }
  if (!todas_las_empresas)
    sql += " And MFrEmpresa = " + std::to_string(empresas.empty() ? 0 : empresas.front());
  else if (empresas.empty())
    sql += " And 1 = 0";  // no company where the user may look
  else
    sql += " And MFrEmpresa IN (" + Lista(empresas) + ")";
  sql +=
      " And (MFrMovVinculado NOT IN (Select MFrMovVinculado From genMovimientosFrecuentes Where "
      "MFrRecurrencia is Not null And MFrMovVinculado Is Not Null) OR MFrMovVinculado IS NULL OR "
      "MFrMovVinculado = 0)";
  if (!vinculados.empty())
    sql += " UNION ALL " + std::string(kColumnas) +
           " From genMovimientosFrecuentes, cceEmpresas  Where MFrID IN (" + Lista(vinculados) +
           ") And MFrEmpresa = EmpID  And MFrEstado = 0";
  return sql + " Order by MFrNombre";
}

std::string SqlMiembros(const std::vector<int32_t>& elegidos) {
  return std::string(kColumnas) +
         " From genMovimientosFrecuentes, cceEmpresas  Where MFrMovVinculado IN (" +
         Lista(elegidos) +
         ") And MFrEmpresa = EmpID  And (MFrDelSistema Is Null or MFrDelSistema = 0) And "
         "MFrEstado = 0";
}

frmVincular::frmVincular(Connection& cn, const SuiteServices& servicios, int idioma,
                         int32_t empresa, int32_t movimiento, std::string opcion)
    : cn_(cn),
      servicios_(servicios),
      idioma_(idioma),
      empresa_(empresa),
      movimiento_(movimiento),
      opcion_(std::move(opcion)) {}

std::optional<std::string> frmVincular::Mostrar(std::string_view vinculos) {
  if (!servicios_.formularios)
    throw std::logic_error("no hay dónde mostrar el diálogo de vínculos");
  const auto texto = [&](int n) { return std::string(resources::Texto(n, idioma_)); };
  const auto avisar = [&](std::initializer_list<int> lineas, MsgIcon icono) {
    if (servicios_.messages)
      servicios_.messages->Show(
          resources::Mensaje(lineas, msg::kTituloVincular, icono, MsgButtons::OK, idioma_));
  };

  // The given links: their orders, and the groups the edited movement already belongs to.
  std::map<int32_t, int32_t> orden_dado;
  std::vector<int32_t> ya_vinculados;
  for (const Vinculo& v : LeerVinculos(vinculos).vinculos) {
    orden_dado[v.id] = v.orden;
    if (v.id != movimiento_) ya_vinculados.push_back(v.id);
  }
  std::set<int32_t> marcados(ya_vinculados.begin(), ya_vinculados.end());
  std::set<int32_t> grupos_propios;
  if (movimiento_ > 0) grupos_propios.insert(movimiento_);

  auto f = servicios_.formularios->Crear("frmVincular");
  f->Titulo(texto(msg::kTituloVincular));
  controles::ILista& tipos = f->CrearLista("cfMovimientos", 1);
  tipos.Caption(texto(msg::kCapMovimientos));
  tipos.Agregar(texto(msg::kFiltroTodos), static_cast<int32_t>(FiltroVincular::Todos));
  tipos.Agregar(texto(msg::kFiltroAsientos), static_cast<int32_t>(FiltroVincular::Asientos));
  tipos.Agregar(texto(msg::kFiltroComprobantes),
                static_cast<int32_t>(FiltroVincular::Comprobantes));
  tipos.Indice(0);
  controles::ICasilla& todas = f->CrearCasilla("chTodas", 1);
  todas.Caption(texto(msg::kCapTodasMisEmpresas));
  controles::IControl& marco = f->CrearEtiqueta("fraOrden", 2, controles::ClaseControl::Panel);
  marco.Caption(texto(msg::kMarcoOrden));
  marco.Hint(texto(msg::kAyudaOrden));
  controles::IGrilla& grilla = f->CrearGrilla("vsGrid");
  grilla.Columnas(texto(msg::kEncabezadoVincular) + "|ID|Grupo|EmpID");
  for (const int c : {kId, kGrupo, kEmpId}) grilla.ColumnaOculta(c, true);
  controles::IBoton& continuar = f->CrearBoton("bfContinuar");
  controles::IBoton& cancelar = f->CrearBoton("bfCancel");
  controles::IBoton& ayuda = f->CrearBoton("bfHelp");
  cancelar.Caption(texto(msg::kCapCancelar));
  cancelar.Cancela(true);
  ayuda.Caption(texto(msg::kBotonAyuda));

  std::vector<Movimiento> filas;  // the grid's rows
  const auto mostrar = [&](std::vector<Movimiento> nuevas, bool ordenando) {
    filas = std::move(nuevas);
    grilla.LimpiarFilas();
    for (const Movimiento& m : filas) {
      const int r = grilla.AgregarFila();
      grilla.Tilde(r, kTilde, marcados.count(m.id) > 0);
      const auto dado = orden_dado.find(m.id);
      const int32_t orden = dado != orden_dado.end() ? dado->second : m.orden;
      grilla.Celda(r, kOrden, orden > 0 ? std::to_string(orden) : "");
      grilla.Celda(r, kTipo,
                   m.tipo == 2   ? texto(msg::kTipoComprobante)
                   : m.tipo == 0 ? ""
                                 : texto(msg::kTipoAsiento));
      grilla.Celda(r, kNombre, m.nombre);
      grilla.Celda(r, kEmpresa, m.empresa);
      grilla.Celda(r, kId, std::to_string(m.id));
      grilla.Celda(r, kGrupo, std::to_string(m.grupo));
      grilla.Celda(r, kEmpId, std::to_string(m.emp_id));
    }
    grilla.ColumnaOculta(kTilde, ordenando);
    grilla.ColumnaCasilla(kTilde, true);
    grilla.ColumnaEditable(kTilde, !ordenando);
    grilla.ColumnaEditable(kOrden, ordenando);
    if (!filas.empty()) grilla.Fila(0);
  };

  const auto candidatos = [&] {
    const bool amplio = todas.Marcada();
    std::vector<int32_t> empresas;
    if (!amplio) {
      empresas.push_back(empresa_);
    } else {
      for (auto rs = cn_.OpenReadOnly("Select EmpID from cceEmpresas"); !rs->Eof();
           rs->MoveNext()) {
        const int32_t id = vb::CLng(rs->Get("EmpID"), vb::Locale::Invariant());
        const std::string letras = servicios_.rights ? servicios_.rights->Letras(id, opcion_) : "";
        if (letras.find_first_of("TQ") != std::string::npos) empresas.push_back(id);
      }
    }
    const auto filtro = static_cast<FiltroVincular>(tipos.Dato(std::max(tipos.Indice(), 0)));
    std::vector<Movimiento> leidas =
        Leer(cn_, SqlCandidatos(movimiento_, filtro, amplio, empresas, ya_vinculados));
    for (const Movimiento& m : leidas)
      if (marcados.count(m.id) && m.grupo > 0) grupos_propios.insert(m.grupo);
    mostrar(std::move(leidas), false);
  };

  tipos.AlElegir(candidatos);
  todas.AlCambiar(candidatos);
  grilla.AlEditarCelda([&](int r, int c) {
    if (c != kTilde) return;
    const Movimiento& m = filas[r];
    if (!grilla.Tilde(r, kTilde)) {
      marcados.erase(m.id);
      return;
    }
    if (m.grupo > 0 && m.grupo != m.id && !grupos_propios.count(m.grupo)) {
      grilla.Tilde(r, kTilde, false);
      avisar({msg::kYaVinculado}, MsgIcon::Exclamation);
      return;
    }
    marcados.insert(m.id);
    if (m.grupo == m.id) {
      for (size_t k = 0; k < filas.size(); ++k) {
        if (filas[k].grupo != m.id) continue;
        grilla.Tilde(static_cast<int>(k), kTilde, true);
        marcados.insert(filas[k].id);
      }
      avisar({msg::kVinculoConSusVinculados}, MsgIcon::Information);
    }
  });

  std::string resultado;
  continuar.Caption(texto(msg::kBotonContinuar));
  continuar.PorDefecto(true);
  continuar.AlPulsar([&] {
    if (f->PanelVisible() == 1) {
      std::vector<Movimiento> orden;
      std::vector<int32_t> elegidos;
      for (size_t k = 0; k < filas.size(); ++k) {
        if (!grilla.Tilde(static_cast<int>(k), kTilde)) continue;
        orden.push_back(filas[k]);
        elegidos.push_back(filas[k].id);
      }
      if (orden.empty()) {  // nothing linked any more
        f->Cerrar(1);
        return;
      }
      for (Movimiento& m : Leer(cn_, SqlMiembros(elegidos))) {
        const bool ya = std::any_of(orden.begin(), orden.end(),
                                    [&](const Movimiento& o) { return o.id == m.id; });
        if (!ya && m.id != movimiento_) orden.push_back(std::move(m));
      }
      Movimiento mio;
      mio.id = movimiento_;
      mio.nombre = texto(msg::kMiMovimiento);
      orden.push_back(std::move(mio));
      f->MostrarPanel(2);
      mostrar(std::move(orden), true);
      continuar.Caption(texto(msg::kCapAceptar));
      grilla.SetFocus();
      return;
    }
    std::vector<std::string> celdas;
    for (int r = 0; r < grilla.Filas(); ++r) celdas.push_back(grilla.Celda(r, kOrden));
    if (const auto mal = PrimerOrdenIncorrecto(celdas)) {
      avisar({msg::kOrdenIncorrecto, msg::kVerifiqueOrden}, MsgIcon::Exclamation);
      grilla.Fila(static_cast<int>(*mal));
      grilla.SetFocus();
      return;
    }
    std::vector<Vinculo> pares;
    for (size_t k = 0; k < filas.size(); ++k) pares.push_back({filas[k].id, *LeerOrden(celdas[k])});
    resultado = EscribirVinculos(pares);
    f->Cerrar(1);
  });
  cancelar.AlPulsar([&] { f->Cerrar(0); });
  ayuda.AlPulsar([&] {
    if (servicios_.messages) servicios_.messages->ShowHelp(resources::HelpContext("vincMov"));
  });
  f->AlPedirCierre([&] { f->Cerrar(0); });

  f->MostrarPanel(1);
  candidatos();
  grilla.SetFocus();
  if (f->MostrarModal() != 1) return std::nullopt;
  return resultado;
}

}  // namespace kivmovfrec::ui
