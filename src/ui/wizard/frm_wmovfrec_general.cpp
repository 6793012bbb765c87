// frmWMovFrec, general panel of an entry or voucher: its controls, the lookups that fill its
// lists, the movement's values, the contact (and the question that makes a private one public),
// and the links to other movements.
#include <set>

#include "kivmovfrec/vb.h"
#include "platform/vb/convert.h"
#include "platform/vb/locale.h"
#include "resources/catalogue.h"
#include "resources/msg.h"
#include "storage/sql_texto.h"
#include "ui/links/frm_vincular.h"
#include "ui/links/texto_vinculos.h"
#include "ui/wizard/frm_wmovfrec_partes.h"

namespace kivmovfrec::ui {

using namespace controles;

std::string SqlTiposComprobante(int32_t empresa) {
  return std::string(
             "Select TCoCodigo, TCoNombre From cceTipoComprobante, "
             "sisClasificacionComprobante ") +
         " Where TCoClasificacion = CCoCodigo " + " And TCoIDEmpresa = " + std::to_string(empresa) +
         " Order by TCoNombre";
}

std::string SqlTipoComprobante(int32_t tipo) {
  return std::string(
             "Select CCoVaAlDebe, CCoOperaContado, TCoNumeroObligatorio, "
             "CCoConQPagaCobra From cceTipoComprobante, sisClasificacionComprobante ") +
         " Where TCoCodigo = " + std::to_string(tipo) + " And TCoClasificacion = CCoCodigo";
}

bool ImportePermitido(bool numeracion_obligatoria, int32_t tipo_importe) {
  return !numeracion_obligatoria || tipo_importe != kImporteAutomatico;
}

int32_t Entero(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? 0 : vb::CLng(v, vb::Locale::Invariant());
}

std::string TextoDe(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? std::string() : vb::Trim(vb::CStr(v, vb::Locale::Invariant()));
}

int IndiceDeDato(const ILista& l, int32_t dato) {
  for (int i = 0; i < l.Cantidad(); ++i)
    if (l.Dato(i) == dato) return i;
  return -1;
}

int32_t DatoElegido(const ILista& l, int32_t ninguno) {
  return l.Indice() < 0 ? ninguno : l.Dato(l.Indice());
}

void frmWMovFrec::Estado::CrearGeneral() {
  IFormulario& f = *form;
  const bool asiento = tipo == 1;
  const int p = kPanelGeneral;
  auto lista = [&](const char* n, int caption) -> ILista& {
    ILista& l = f.CrearLista(n, p);
    l.Caption(Texto(caption));
    return l;
  };
  nombre = &f.CrearTexto("tNombre", p);
  nombre->Caption(Texto(msg::kCapNombre));
  leyenda = &f.CrearTexto("tLeyenda", p);
  leyenda->Caption(Texto(asiento ? msg::kCapLeyenda : msg::kCapDetalle));
  if (asiento) {
    libro = &lista("cfLibro", msg::kCapLibro);
  } else {
    ente = &f.CrearTexto("tEnte", p);
    ente->Caption(Texto(msg::kCapContacto));
    ente->AlCambiar([this] { Atrapar(msg::kErrorSetearPanel, [this] { ElegirContacto(); }); });
    tipo_comprobante = &lista("cfTipoComprobante", msg::kCapTipoComprobante);
  }
  tipo_importe = &lista("cfTipoImporte", msg::kCapTipoImporte);
  for (int n : {msg::kImporteEstimado, msg::kImporteFijo, msg::kImporteAutomatico})
    tipo_importe->Agregar(Texto(n), n - msg::kImporteEstimado + kImporteEstimado);
  agendado = &lista("cfAgendado", asiento ? msg::kCapAsiento : msg::kCapComprobante);
  // The voucher's texts carry an access key (they were option captions); a list shows none.
  agendado->Agregar(SinMarcasDeAcceso(Texto(asiento ? msg::kAgendado : msg::kAgendadoAlterno)),
                    kAgendado);
  agendado->Agregar(SinMarcasDeAcceso(Texto(asiento ? msg::kFrecuente : msg::kFrecuenteAlterno)),
                    kFrecuente);
  agendado->AlElegir([this] { MostrarPanel(panel); });
  autoriza = &lista("cfAutoriza", msg::kCapAutoriza);
  if (asiento) {
    imagen = &lista("cfImagen", msg::kCapAsociarImagen);
    // Who owns the entry (DelSistema): shown so a person sees a system entry for what it is;
    // the wizard never changes it.
    clasificacion = &lista("cfTipo", msg::kCapTipo);
    clasificacion->Agregar(Texto(msg::kClasificacionNormal), ToInt(enuClasificacionMF::Normal));
    clasificacion->Agregar(Texto(msg::kClasificacionSistema), ToInt(enuClasificacionMF::Sistema));
    clasificacion->Enabled(false);
  } else {
    moneda = &lista("cfMoneda", msg::kCapMoneda);
    moneda->AlElegir([this] { ElegirMoneda(); });
    tipo_cambio = &lista("cfTipoCambio", msg::kCapTCa);
  }
  sin_empresa = &f.CrearCasilla("chSinEmpresa", p);
  sin_empresa->Caption(Texto(msg::kCapSoloEstaEmpresaAsistente));
  vincular = &f.CrearBoton("hlVincular", p, ClaseControl::Enlace);
  vincular->Caption(Texto(msg::kVincularMovimiento));
  vincular->AlPulsar([this] { Atrapar(msg::kErrorGrabarMovimiento, [this] { Vincular(); }); });
  ver_vinculos = &f.CrearBoton("hlVerVinculos", p, ClaseControl::Enlace);
  ver_vinculos->Caption(Texto(msg::kVerVinculos));
  ver_vinculos->AlPulsar(
      [this] { Atrapar(msg::kErrorGrabarMovimiento, [this] { VerVinculos(); }); });
}

void frmWMovFrec::Estado::LlenarListas() {
  Connection& cn = *ctx.cn;
  auto llenar = [&](ILista* l, const std::string& sql, const char* clave, const char* texto) {
    if (!l) return;
    l->Limpiar();
    for (auto rs = cn.OpenReadOnly(sql); !rs->Eof(); rs->MoveNext())
      l->Agregar(TextoDe(rs->Get(texto)), Entero(rs->Get(clave)));
  };
  llenar(libro, kSqlLibros, "LibCodigo", "LibNombre");
  llenar(imagen, kSqlImagenes, "Codigo", "Nombre");
  llenar(autoriza, kSqlAutoriza, "UsuCodigo", "UsuIdentificacion");
  if (tipo == 2) {
    llenar(tipo_comprobante, SqlTiposComprobante(empresa), "TCoCodigo", "TCoNombre");
    llenar(tipo_cambio, kSqlTiposCotizacion, "TCMCodigo", "TCMNombre");
    moneda->Limpiar();
    monedas.clear();
    for (auto rs = cn.OpenReadOnly(kSqlMonedas); !rs->Eof(); rs->MoveNext()) {
      moneda->Agregar(TextoDe(rs->Get("Nombre")), Entero(rs->Get("MonID")));
      monedas.push_back(TextoDe(rs->Get("MonSimbolo")));
    }
  }
}

void frmWMovFrec::Estado::CargarGeneral() {
  const clsRegMovimientoFrecuente& m = *mf->MovFrecuente();
  nombre->Text(m.Nombre());
  leyenda->Text(m.Memo());
  if (libro) libro->Indice(IndiceDeDato(*libro, m.Modalidad()));
  tipo_importe->Indice(
      IndiceDeDato(*tipo_importe, m.TipoImporte() > 0 ? m.TipoImporte() : kImporteEstimado));
  const bool con_agenda = m.Recurrencia() > 0 || !mf->Recurrencia()->FechaProxima().empty();
  agendado->Indice(IndiceDeDato(*agendado, con_agenda ? kAgendado : kFrecuente));
  // A new movement is authorised by the user who creates it until someone else is chosen.
  autoriza->Indice(
      IndiceDeDato(*autoriza, m.UsuarioAutoriza() > 0 ? m.UsuarioAutoriza() : usuario));
  if (imagen) imagen->Indice(IndiceDeDato(*imagen, m.Imagen()));
  if (clasificacion) clasificacion->Indice(IndiceDeDato(*clasificacion, ToInt(m.DelSistema())));
  if (tipo == 2) {
    tipo_comprobante->Indice(IndiceDeDato(*tipo_comprobante, m.Modalidad()));
    moneda->Indice(IndiceDeDato(*moneda, m.Moneda()));
    ElegirMoneda();
    contacto.reset();
    if (m.Ente() > 0) {
      auto rs =
          ctx.cn->OpenReadOnly("Select * from genEntes Where EntID = " + std::to_string(m.Ente()));
      if (!rs->Eof()) {
        contacto = m.Ente();
        ente->Text(TextoDe(rs->Get("EntNombre")));
      }
    }
  }
  sin_empresa->Marcada(true);
  sin_empresa->Enabled(false);
  vinculos = VinculosDelGrupo();
}

void frmWMovFrec::Estado::ElegirMoneda() {
  const int i = moneda->Indice();
  const std::string simbolo = i >= 0 && i < static_cast<int>(monedas.size()) ? monedas[i] : "";
  tipo_cambio->Caption(resources::Texto(msg::kCapTCa, idioma, simbolo));
  // The lines show their amounts in the movement's currency.
  if (i >= 0 && mf->MovFrecuente()->Moneda() != moneda->Dato(i)) {
    mf->MovFrecuente()->Moneda(static_cast<int16_t>(moneda->Dato(i)));
    if (cuentas) cuentas->Cargar();
  }
}

void frmWMovFrec::Estado::ElegirContacto() {
  contacto.reset();
  contacto_a_publico = false;
  const std::string texto = vb::Trim(ente->Text());
  if (texto.empty() || storage::TieneComilla(texto)) return;
  const bool es_id = texto.find_first_not_of("0123456789") == std::string::npos;
  if (es_id && texto.size() > 9) return;
  const std::string sql = es_id ? "Select * from genEntes Where EntID = " + texto
                                : "Select * from genEntes Where EntNombre = '" + texto + "'";
  auto rs = ctx.cn->OpenReadOnly(sql);
  if (rs->Eof()) return;
  contacto = Entero(rs->Get("EntID"));
  const std::string nombre_ente = TextoDe(rs->Get("EntNombre"));
  const bool privado = Entero(rs->Get("EntOwner")) != 0;
  rs->Close();
  if (!privado) return;
  MessageRequest pregunta = resources::Mensaje({msg::kContactoPrivado}, msg::TituloDeTipo(tipo),
                                               MsgIcon::Question, MsgButtons::YesNo, idioma);
  pregunta.text = resources::Texto(msg::kContactoPrivado, idioma, nombre_ente);
  contacto_a_publico = ctx.servicios.messages->Show(pregunta) == kMsgYes;
}

std::string frmWMovFrec::Estado::VinculosDelGrupo() {
  const clsRegMovimientoFrecuente& m = *mf->MovFrecuente();
  const int32_t grupo = m.MovVinculado() > 0 ? m.MovVinculado() : m.ID();
  if (grupo <= 0) return "";
  const std::string g = std::to_string(grupo);
  std::vector<Vinculo> pares;
  for (auto rs = ctx.cn->OpenReadOnly(
           "Select MFrID, MFrMVOrden From genMovimientosFrecuentes Where MFrMovVinculado = " + g +
           " Or MFrID = " + g + " Order By MFrMVOrden, MFrID");
       !rs->Eof(); rs->MoveNext()) {
    const int32_t orden = Entero(rs->Get("MFrMVOrden"));
    pares.push_back(
        {Entero(rs->Get("MFrID")), orden > 0 ? orden : static_cast<int32_t>(pares.size()) + 1});
  }
  if (pares.size() < 2) return "";  // a movement alone is no group
  return EscribirVinculos(pares);
}

void frmWMovFrec::Estado::Vincular() {
  const int32_t propio = mf->MovFrecuente()->ID();
  frmVincular dialogo(*ctx.cn, ctx.servicios, idioma, empresa, propio,
                      tipo == 1 ? "PasajeAsientos" : "Comprobantes");
  const std::optional<std::string> nuevos = dialogo.Mostrar(vinculos);
  if (!nuevos) return;
  vinculos = *nuevos;
  // A scheduled movement in the group lends its schedule when the person wants it.
  std::string ids;
  for (const Vinculo& v : LeerVinculos(vinculos).vinculos)
    if (v.id > 0 && v.id != propio) ids += (ids.empty() ? "" : ",") + std::to_string(v.id);
  if (ids.empty()) return;
  int32_t con_agenda = 0;
  for (auto rs = ctx.cn->OpenReadOnly(
           "Select MFrID, MFrRecurrencia From genMovimientosFrecuentes Where MFrID IN (" + ids +
           ") Order By MFrID");
       !rs->Eof() && con_agenda == 0; rs->MoveNext()) {
    if (Entero(rs->Get("MFrRecurrencia")) > 0) con_agenda = Entero(rs->Get("MFrID"));
  }
  if (con_agenda == 0) return;
  const bool ya_agendado = EsAgendado();
  if (!Preguntar({msg::kVinculadoEsAgendado,
                  ya_agendado ? msg::kCopiarAgenda : msg::kConvertirAAgendado})) {
    return;
  }
  clsMFTipo otro(ctx.servicios.clock);
  if (!otro.Load(*ctx.cn, con_agenda)) return;
  agendado->Indice(IndiceDeDato(*agendado, kAgendado));
  CopiarAgenda(*otro.Recurrencia());
  MostrarPanel(panel);
}

void frmWMovFrec::Estado::VerVinculos() {
  const LecturaVinculos l = LeerVinculos(vinculos);
  std::string texto;
  for (const Vinculo& v : l.vinculos) {
    std::string nombre_mov = Texto(msg::kMiMovimiento);
    if (v.id > 0 && v.id != mf->MovFrecuente()->ID()) {
      auto rs = ctx.cn->OpenReadOnly(
          "Select MFrNombre From genMovimientosFrecuentes Where MFrID = " + std::to_string(v.id));
      nombre_mov = rs->Eof() ? "?" : TextoDe(rs->Get("MFrNombre"));
    }
    texto += (texto.empty() ? "" : "\n") + std::to_string(v.orden) + ". " + nombre_mov;
  }
  ctx.servicios.messages->Show(
      {texto, Texto(msg::kTituloVincular), MsgIcon::Information, MsgButtons::OK, 1, -1});
}

}  // namespace kivmovfrec::ui
