// The main window's actions: menus, tool bar, when each applies and what it calls.
#include <QKeySequence>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <exception>

#include "kivmovfrec/db.h"
#include "kivmovfrec/enums.h"
#include "kivmovfrec/errors.h"
#include "ventana_principal_impl.h"
#include "ventanas_calculo.h"

namespace kivmovfrec::qt {
namespace {

constexpr int16_t kAsiento = ToInt(enuTipoMovFrec::Asiento);
constexpr int16_t kComprobante = ToInt(enuTipoMovFrec::Comprobante);
constexpr int16_t kAviso = ToInt(enuTipoMovFrec::Calendario);
constexpr int16_t kAsientoSistema = ToInt(enuTipoMovFrec::AsientoSistema);
constexpr int16_t kLista = ToInt(enuTipoMovFrec::CheckList);
constexpr int16_t kVigente = ToInt(enuEstadoMF::EnProceso);
constexpr int16_t kPapelera = ToInt(enuEstadoMF::Papelera);

// Why an action failed, in the words the command line uses.
std::string Motivo(std::exception_ptr error) {
  try {
    std::rethrow_exception(error);
  } catch (const DbError& e) {
    return DescribirErrorDb(e);
  } catch (const std::exception& e) {
    return e.what();
  } catch (...) {
    return "error desconocido";
  }
}

// The link text of a group as the link dialog starts from it ("id:orden|..." in execution
// order, a member without order placed by its position); "" for a movement alone.
std::string TextoVinculos(const GrupoVinculado& grupo) {
  if (grupo.miembros.size() < 2) return "";
  std::string texto;
  for (size_t i = 0; i < grupo.miembros.size(); ++i) {
    const MiembroGrupo& m = grupo.miembros[i];
    texto += (texto.empty() ? "" : "|") + std::to_string(m.id) + ":" +
             std::to_string(m.orden > 0 ? m.orden : static_cast<int32_t>(i) + 1);
  }
  return texto;
}

}  // namespace

void VentanaPrincipal::Impl::CrearAcciones() {
  const auto accion = [this](const char* nombre, const char* texto, const char* ayuda,
                             std::function<int32_t()> trabajo) {
    auto* a = new QAction(QString::fromUtf8(texto), &ventana);
    a->setObjectName(nombre);
    a->setStatusTip(QString::fromUtf8(ayuda));
    a->setToolTip(QString::fromUtf8(ayuda));
    QObject::connect(a, &QAction::triggered, &ventana,
                     [this, trabajo = std::move(trabajo)] { Correr(trabajo); });
    return a;
  };
  // A new movement of kind `tipo` in the wizard; the saved one is selected.
  const auto nuevo = [this](int16_t tipo) {
    return [this, tipo]() -> int32_t {
      mf.CleanEstructura();
      mf.EstructuraMovFrec()->MovFrecuente()->Tipo(static_cast<enuTipoMovFrec>(tipo));
      return mf.ShowWizard(usuario);
    };
  };
  nuevo_asiento =
      accion("accNuevoAsiento", "Nuevo &asiento", "Crea un asiento frecuente", nuevo(kAsiento));
  nuevo_asiento->setShortcut(QKeySequence::New);
  nuevo_comprobante = accion("accNuevoComprobante", "Nuevo &comprobante",
                             "Crea un comprobante frecuente", nuevo(kComprobante));
  nuevo_aviso =
      accion("accNuevoAviso", "Nuevo a&viso", "Crea un aviso de calendario", nuevo(kAviso));
  nueva_lista = accion("accNuevaLista", "Nueva &lista de tareas", "Crea una lista de tareas",
                       [this] { return mf.ShowCheckList(0, static_cast<int16_t>(usuario)); });

  editar = accion("accEditar", "&Editar...", "Abre el movimiento elegido", [this]() -> int32_t {
    const auto f = Seleccionada();
    if (!f) return 0;
    if (f->tipo == kLista) return mf.ShowCheckList(f->id, static_cast<int16_t>(usuario));
    if (!mf.LoadMF(f->id)) return 0;
    return mf.ShowWizard(usuario);
  });
  vincular =
      accion("accVincular", "V&incular...",
             "Vincula el movimiento elegido con otros que se ejecutan con él", [this]() -> int32_t {
               const auto f = Seleccionada();
               if (!f) return 0;
               const std::string antes = TextoVinculos(mf.GrupoEnOrden(f->id));
               const auto despues = mf.VincularMovimientos(f->id, f->tipo, antes);
               if (despues && *despues != antes) mf.GuardarVinculos(f->id, *despues);
               return 0;
             });
  papelera = accion("accPapelera", "Enviar a la &papelera", "Envía el movimiento a la papelera",
                    [this]() -> int32_t {
                      const auto f = Seleccionada();
                      if (!f) return 0;
                      if (f->tipo == kLista)
                        mf.CheckListAPapelera(f->id);
                      else
                        mf.CambiarEstadoMF(f->id, enuEstadoMF::Papelera, true);
                      return 0;
                    });
  eliminar = accion("accEliminar", "Eli&minar", "Elimina para siempre un movimiento de la papelera",
                    [this]() -> int32_t {
                      const auto f = Seleccionada();
                      if (f) mf.DeleteRegistroMFConfirmar(f->id);
                      return 0;
                    });
  eliminar->setShortcut(QKeySequence::Delete);
  realizado = accion("accRealizado", "Dar por &realizado",
                     "Registra como cumplido el vencimiento actual y pasa al siguiente",
                     [this]() -> int32_t {
                       const auto f = Seleccionada();
                       if (!f) return 0;
                       if (f->tipo == kLista) {
                         mf.CheckListDarPorRealizado(f->id);  // asks its own question
                         return 0;
                       }
                       const MessageRequest pregunta{
                           "¿Confirma dar por realizado el vencimiento del " +
                               FechaTexto(*f->proxima) + " de «" + f->nombre + "»?",
                           "Movimientos Frecuentes", MsgIcon::Question, MsgButtons::YesNo, 2};
                       if (mf.Servicios().messages->Show(pregunta) != kMsgYes) return 0;
                       mf.DarRealizadaFechaAgenda(f->id);
                       return 0;
                     });
  calcular = accion("accCalcular", "&Calcular...",
                    "Calcula los renglones del movimiento y muestra de dónde sale cada valor",
                    [this]() -> int32_t {
                      if (const auto f = Seleccionada()) MostrarCalculo(&ventana, mf, f->id);
                      return 0;
                    });
  pronostico = accion("accPronostico", "Pro&nóstico...",
                      "Saldos proyectados por mes con lo que vencerá", [this]() -> int32_t {
                        MostrarPronostico(&ventana, mf);
                        return 0;
                      });
  ejecutar = accion("accEjecutar", "E&jecutar lo vencido...",
                    "Revisa y registra lo que vence hasta hoy", [this]() -> int32_t {
                      EjecutarLoVencido(&ventana, mf, mf.Contexto().Reloj().Today());
                      return 0;
                    });
  actualizar =
      accion("accActualizar", "Ac&tualizar", "Vuelve a leer los movimientos", [] { return 0; });
  actualizar->setShortcut(QKeySequence::Refresh);
  salir = new QAction("&Salir", &ventana);
  salir->setObjectName("accSalir");
  salir->setShortcut(QKeySequence::Quit);
  QObject::connect(salir, &QAction::triggered, &ventana, &QWidget::close);

  // Shorter captions on the tool bar, so that every button fits the window's width.
  for (auto [a, texto] : {std::pair{nuevo_asiento, "Asiento"},
                          {nuevo_comprobante, "Comprobante"},
                          {nuevo_aviso, "Aviso"},
                          {nueva_lista, "Lista de tareas"},
                          {realizado, "Realizado"},
                          {papelera, "Papelera"},
                          {ejecutar, "Ejecutar lo vencido"}})
    a->setIconText(QString::fromUtf8(texto));

  auto* archivo = ventana.menuBar()->addMenu("&Archivo");
  archivo->addAction(actualizar);
  archivo->addSeparator();
  archivo->addAction(salir);
  auto* movimiento = ventana.menuBar()->addMenu("M&ovimiento");
  for (QAction* a : {nuevo_asiento, nuevo_comprobante, nuevo_aviso, nueva_lista})
    movimiento->addAction(a);
  movimiento->addSeparator();
  for (QAction* a : {editar, vincular, realizado}) movimiento->addAction(a);
  movimiento->addSeparator();
  for (QAction* a : {papelera, eliminar}) movimiento->addAction(a);
  auto* calculo = ventana.menuBar()->addMenu("&Cálculo");
  for (QAction* a : {calcular, pronostico, ejecutar}) calculo->addAction(a);

  barra = ventana.addToolBar("Acciones");
  barra->setObjectName("barraAcciones");
  barra->setToolButtonStyle(Qt::ToolButtonTextOnly);
  barra->addWidget(new QLabel("Nuevo:"));
  for (QAction* a : {nuevo_asiento, nuevo_comprobante, nuevo_aviso, nueva_lista})
    barra->addAction(a);
  barra->addSeparator();
  for (QAction* a : {editar, vincular, realizado, papelera, eliminar}) barra->addAction(a);
  barra->addSeparator();
  for (QAction* a : {calcular, pronostico, ejecutar}) barra->addAction(a);
  Habilitar();
}

void VentanaPrincipal::Impl::Habilitar() {
  const auto f = Seleccionada();
  const bool hay = f.has_value();
  const int16_t tipo = hay ? f->tipo : 0;
  const bool activo = hay && f->estado != kPapelera;
  editar->setEnabled(
      activo && (tipo == kAsiento || tipo == kComprobante || tipo == kAviso || tipo == kLista));
  vincular->setEnabled(activo && (tipo == kAsiento || tipo == kComprobante));
  papelera->setEnabled(activo);
  eliminar->setEnabled(hay && f->estado == kPapelera);
  realizado->setEnabled(hay && f->estado == kVigente && f->proxima.has_value());
  calcular->setEnabled(activo &&
                       (tipo == kAsiento || tipo == kComprobante || tipo == kAsientoSistema));
}

void VentanaPrincipal::Impl::Correr(const std::function<int32_t()>& trabajo) {
  const auto antes = Seleccionada();
  int32_t elegir = antes ? antes->id : 0;
  try {
    if (const int32_t id = trabajo(); id > 0) elegir = id;
  } catch (...) {
    const std::string motivo = Motivo(std::current_exception());
    mf.Servicios().messages->Show({"No se pudo completar la acción.\n" + motivo,
                                   "Movimientos Frecuentes", MsgIcon::Critical, MsgButtons::OK, 1});
  }
  try {
    LeerLista(elegir);
    LeerAgenda();
  } catch (...) {
    mf.Servicios().messages->Show(
        {"No se pudieron leer los movimientos.\n" + Motivo(std::current_exception()),
         "Movimientos Frecuentes", MsgIcon::Critical, MsgButtons::OK, 1});
  }
}

}  // namespace kivmovfrec::qt
