// The step-script driver: plays the person in front of in-memory forms (see kivmovfrec/guion.h
// for the step format).
#include "kivmovfrec/guion.h"

#include <nlohmann/json.hpp>

#include <set>
#include <stdexcept>

#include "platform/controls/memoria.h"
#include "platform/vb/typed_number.h"

namespace kivmovfrec {
namespace {

using controles::memoria::Formulario;
using nlohmann::json;

struct Paso {
  std::string accion;  // escribir, elegir, activar, marcar, tildar, seleccionar, pulsar, ...
  std::string control;
  std::string texto;  // texto, opcion or the answer
  std::string columna;
  int fila = 0;  // 0 when not given
  bool valor = true;
  std::string en;  // the form the step is meant for, "" for any
  std::string Describir() const {
    std::string d = accion + (control.empty() ? "" : " «" + control + "»");
    if (accion == "responder") d += " «" + texto + "»";
    return d;
  }
};

[[noreturn]] void Invalido(size_t i, const std::string& motivo) {
  throw std::invalid_argument("paso " + std::to_string(i + 1) + ": " + motivo);
}

std::string Texto(const json& j, const char* clave, size_t i) {
  if (!j.is_string()) Invalido(i, std::string("«") + clave + "» debe ser un texto");
  return j.get<std::string>();
}

Paso LeerPaso(const json& j, size_t i) {
  static const std::set<std::string> acciones = {"escribir", "elegir", "activar",
                                                 "marcar",   "tildar", "seleccionar",
                                                 "pulsar",   "cerrar", "responder"};
  if (!j.is_object()) Invalido(i, "cada paso es un objeto");
  Paso p;
  for (const auto& [clave, valor] : j.items()) {
    if (acciones.count(clave)) {
      if (!p.accion.empty())
        Invalido(i, "un paso tiene una sola acción (" + p.accion + ", " + clave + ")");
      p.accion = clave;
      if (clave == "cerrar") {
        if (!valor.is_boolean() || !valor.get<bool>()) Invalido(i, "«cerrar» lleva true");
      } else if (clave == "responder") {
        p.texto = Texto(valor, "responder", i);
      } else {
        p.control = Texto(valor, clave.c_str(), i);
      }
    } else if (clave == "texto" || clave == "opcion") {
      p.texto = Texto(valor, clave.c_str(), i);
    } else if (clave == "columna") {
      if (valor.is_number_integer())
        p.columna = std::to_string(valor.get<int>());
      else
        p.columna = Texto(valor, "columna", i);
    } else if (clave == "fila") {
      if (!valor.is_number_integer() || valor.get<int>() < 1)
        Invalido(i, "«fila» es un número desde 1");
      p.fila = valor.get<int>();
    } else if (clave == "valor") {
      if (!valor.is_boolean()) Invalido(i, "«valor» es true o false");
      p.valor = valor.get<bool>();
    } else if (clave == "en") {
      p.en = Texto(valor, "en", i);
    } else {
      Invalido(i, "clave desconocida «" + clave + "»");
    }
  }
  if (p.accion.empty()) Invalido(i, "falta la acción (escribir, elegir, pulsar, ...)");
  const bool grilla_celda = p.accion == "tildar" || (p.accion == "escribir" && p.fila > 0);
  if (grilla_celda && (p.fila == 0 || p.columna.empty()))
    Invalido(i, "«" + p.accion + "» en una grilla lleva «fila» y «columna»");
  if (p.accion == "seleccionar" && p.fila == 0) Invalido(i, "«seleccionar» lleva «fila»");
  if ((p.accion == "elegir" || p.accion == "activar") && p.texto.empty())
    Invalido(i, "«" + p.accion + "» lleva «opcion»");
  return p;
}

std::string Icono(MsgIcon icon) {
  switch (icon) {
    case MsgIcon::Question:
      return "pregunta";
    case MsgIcon::Exclamation:
      return "exclamacion";
    case MsgIcon::Information:
      return "informacion";
    case MsgIcon::Critical:
      return "critico";
    case MsgIcon::None:
      break;
  }
  return "";
}

// The button an answer stands for on the buttons shown, or 0 when it is not one of them.
int Boton(const std::string& respuesta, MsgButtons botones) {
  const bool si_no = botones == MsgButtons::YesNo || botones == MsgButtons::YesNoCancel;
  const bool cancelar = botones == MsgButtons::OKCancel || botones == MsgButtons::YesNoCancel;
  if (respuesta == "si" && si_no) return kMsgYes;
  if (respuesta == "no" && si_no) return kMsgNo;
  if (respuesta == "aceptar" && !si_no) return kMsgOK;
  if (respuesta == "cancelar" && cancelar) return kMsgCancel;
  return 0;
}

class Guion final : public GuionDialogos,
                    public controles::IFabricaFormularios,
                    public IMessages,
                    public IInput,
                    public std::enable_shared_from_this<Guion> {
 public:
  explicit Guion(std::vector<Paso> pasos) : pasos_(std::move(pasos)) {
    informe_.pasos = static_cast<int>(pasos_.size());
  }

  void Instalar(SuiteServices& s) override {
    auto yo = shared_from_this();
    s.formularios = std::shared_ptr<controles::IFabricaFormularios>(yo, this);
    s.messages = std::shared_ptr<IMessages>(yo, this);
    s.input = std::shared_ptr<IInput>(yo, this);
  }

  InformeGuion Informe() const override {
    InformeGuion r = informe_;
    r.pasos_ejecutados = static_cast<int>(cursor_);
    if (r.error.empty() && cursor_ < pasos_.size())
      r.error = "sobran " + std::to_string(pasos_.size() - cursor_) + " pasos desde el paso " +
                std::to_string(cursor_ + 1) + " (" + pasos_[cursor_].Describir() +
                "): no hay un diálogo abierto que los reciba";
    return r;
  }

  std::unique_ptr<controles::IFormulario> Crear(std::string_view nombre) override {
    return std::make_unique<Formulario>(std::string(nombre), [this](Formulario& f) { Jugar(f); });
  }

  int Show(const MessageRequest& m) override {
    MensajeGuion r{m.numero, m.text, m.caption, Icono(m.icon), {}};
    int boton = 0;
    if (SiguienteEsRespuesta()) {
      boton = Boton(pasos_[cursor_].texto, m.buttons);
      if (boton) {
        r.respuesta = pasos_[cursor_++].texto;
      } else if (m.buttons != MsgButtons::OK) {
        Detener("la respuesta «" + pasos_[cursor_].texto + "» no es un botón del mensaje «" +
                m.text + "»");
      }
    } else if (m.buttons != MsgButtons::OK) {
      Detener("el mensaje «" + m.text + "» espera una respuesta (un paso «responder»)");
    }
    if (!boton) {
      // An OK-only message is acknowledged; an unanswered question gets its harmless answer.
      boton = m.buttons == MsgButtons::OK         ? kMsgOK
              : m.buttons == MsgButtons::OKCancel ? kMsgCancel
                                                  : kMsgNo;
      r.respuesta = boton == kMsgOK ? "aceptar" : boton == kMsgCancel ? "cancelar" : "no";
    }
    informe_.mensajes.push_back(std::move(r));
    return boton;
  }

  void ShowHelp(int context_id) override { informe_.ayuda.push_back(context_id); }

  std::optional<double> PedirNumero(const std::string& prompt, const std::string& caption,
                                    double) override {
    MensajeGuion r{-1, prompt, caption, "", "cancelar"};
    std::optional<double> valor;
    if (!SiguienteEsRespuesta()) {
      Detener("el pedido «" + prompt + "» espera una respuesta (un paso «responder»)");
    } else if (pasos_[cursor_].texto == "cancelar") {
      ++cursor_;
    } else {
      const vb::TypedNumber n = vb::ReadTypedNumber(pasos_[cursor_].texto);
      if (n.status != vb::TypedNumber::kNumber) {
        Detener("«" + pasos_[cursor_].texto + "» no es un número" +
                (n.explanation.empty() ? "" : ": " + n.explanation));
      } else {
        r.respuesta = pasos_[cursor_++].texto;
        valor = n.value;
      }
    }
    informe_.mensajes.push_back(std::move(r));
    return valor;
  }

  // Any text answers a text prompt as typed; "cancelar" cancels it.
  std::optional<std::string> PedirTexto(const std::string& prompt, const std::string& caption,
                                        const std::string&) override {
    MensajeGuion r{-1, prompt, caption, "", "cancelar"};
    std::optional<std::string> valor;
    if (!SiguienteEsRespuesta()) {
      Detener("el pedido «" + prompt + "» espera una respuesta (un paso «responder»)");
    } else if (pasos_[cursor_].texto == "cancelar") {
      ++cursor_;
    } else {
      valor = pasos_[cursor_++].texto;
      r.respuesta = *valor;
    }
    informe_.mensajes.push_back(std::move(r));
    return valor;
  }

 private:
  bool SiguienteEsRespuesta() const {
    return !detenido_ && cursor_ < pasos_.size() && pasos_[cursor_].accion == "responder";
  }

  void Detener(const std::string& motivo) {
    if (detenido_) return;
    detenido_ = true;
    // The step being carried out, or (between steps) the one that was due.
    const size_t i = actual_ < pasos_.size() ? actual_ : cursor_;
    informe_.error = i >= pasos_.size() ? motivo
                                        : "paso " + std::to_string(i + 1) + " (" +
                                              pasos_[i].Describir() + "): " + motivo;
  }

  // Plays the steps on `f` while it is open; forms it opens play the steps that follow.
  void Jugar(Formulario& f) {
    const bool primero = profundidad_++ == 0;
    const size_t paso_que_lo_abrio = actual_;
    while (f.Abierto() && !detenido_ && cursor_ < pasos_.size()) {
      const Paso& p = pasos_[cursor_];
      if (!p.en.empty() && p.en != f.Nombre()) {
        actual_ = cursor_;
        Detener("el paso es para " + p.en + " y está abierto " + f.Nombre());
        break;
      }
      if (p.accion == "responder") {
        Detener("no hay un mensaje ni un pedido que responder");
        break;
      }
      actual_ = cursor_++;
      try {
        Aplicar(f, p);
      } catch (const std::invalid_argument& e) {
        Detener(e.what());
        cursor_ = actual_;  // a refused step did not run
      }
      actual_ = kNinguno;
    }
    --profundidad_;
    actual_ = paso_que_lo_abrio;
    if (primero) {
      informe_.formulario = f.Nombre();
      informe_.panel = f.PanelVisible();
      informe_.foco = f.Foco() ? f.Foco()->Nombre() : "";
      informe_.seleccion = f.TextoSeleccionado();
      informe_.resultado = f.Abierto() ? 0 : f.Resultado();
    }
  }

  static void Aplicar(Formulario& f, const Paso& p) {
    if (p.accion == "escribir") {
      if (p.fila > 0)
        f.EscribirCelda(p.control, p.fila, p.columna, p.texto);
      else
        f.Escribir(p.control, p.texto);
    } else if (p.accion == "elegir") {
      if (dynamic_cast<controles::IArbol*>(f.Buscar(p.control)))
        f.ElegirNodo(p.control, p.texto);
      else
        f.Elegir(p.control, p.texto);
    } else if (p.accion == "activar") {
      f.ActivarNodo(p.control, p.texto);
    } else if (p.accion == "marcar") {
      f.Marcar(p.control, p.valor);
    } else if (p.accion == "tildar") {
      f.TildarCelda(p.control, p.fila, p.columna, p.valor);
    } else if (p.accion == "seleccionar") {
      f.SeleccionarFila(p.control, p.fila);
    } else if (p.accion == "pulsar") {
      f.Pulsar(p.control);
    } else if (p.accion == "cerrar") {
      f.PedirCierre();
    }
  }

  static constexpr size_t kNinguno = static_cast<size_t>(-1);
  std::vector<Paso> pasos_;
  size_t cursor_ = 0;         // the next step to play
  size_t actual_ = kNinguno;  // the step being played
  int profundidad_ = 0;
  bool detenido_ = false;
  InformeGuion informe_;
};

}  // namespace

std::shared_ptr<GuionDialogos> GuionDialogos::Leer(std::string_view texto) {
  json j;
  try {
    j = json::parse(texto);
  } catch (const json::parse_error& e) {
    throw std::invalid_argument(std::string("el guion no es JSON válido: ") + e.what());
  }
  if (j.is_object()) {
    if (j.size() != 1 || !j.contains("pasos"))
      throw std::invalid_argument("el guion es una lista de pasos o un objeto con solo «pasos»");
    j = j["pasos"];
  }
  if (!j.is_array()) throw std::invalid_argument("el guion es una lista de pasos");
  std::vector<Paso> pasos;
  for (size_t i = 0; i < j.size(); ++i) pasos.push_back(LeerPaso(j[i], i));
  return std::make_shared<Guion>(std::move(pasos));
}

}  // namespace kivmovfrec
