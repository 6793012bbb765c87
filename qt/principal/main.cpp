// movfrec-qt: the desktop main window of the frequent-movements component.
//
//   movfrec-qt [--db URI] [--empresa N] [--usuario N] [--hoy FECHA] [--captura PNG |
//   --foto-pantalla PNG]
//
// Opens the database as movfrec does (--db, else MOVFREC_DB, else sqlite:movfrec.db), builds the
// suite's default services for the user with Qt windows for every dialog and message, and shows
// the main window of the company. --captura renders the window to a PNG off screen and ends;
// --foto-pantalla shows it on the display and writes what the screen shows to a PNG. --abrir
// opens a computation window at once, as its action would (with --captura, that window is drawn).
// Exit status: 0 done, 1 the database or the company could not be opened (said in a message box
// and on stderr), 2 a wrong command line.
#include <CLI/CLI.hpp>
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "capturas.h"
#include "kivmovfrec/db.h"
#include "kivmovfrec/empresa.h"
#include "kivmovfrec/mov_frecuente.h"
#include "kivmovfrec/services.h"
#include "kivmovfrec/vb.h"
#include "ventana_principal.h"
#include "ventanas_qt.h"

namespace {

using namespace kivmovfrec;

struct Opciones {
  std::string db = "sqlite:movfrec.db";
  int32_t empresa = 1;
  int32_t usuario = 1;
  std::string hoy;
  std::string captura;
  std::string foto;
  std::string abrir;
};

// What --abrir names: the action of the main window and the movement it applies to (0: none).
struct Apertura {
  const char* accion;
  int32_t id;
};

std::optional<Apertura> LeerApertura(const std::string& texto) {
  if (texto == "pronostico") return Apertura{"accPronostico", 0};
  if (texto == "ejecutar") return Apertura{"accEjecutar", 0};
  const std::string prefijo = "calcular:";
  if (texto.rfind(prefijo, 0) != 0) return std::nullopt;
  const std::string id = texto.substr(prefijo.size());
  if (id.empty() || id.size() > 9 || id.find_first_not_of("0123456789") != std::string::npos)
    return std::nullopt;
  return Apertura{"accCalcular", std::stoi(id)};
}

CLI::Validator FechaValida() {
  return CLI::Validator(
      [](std::string& valor) -> std::string {
        if (vb::ParseDate(valor)) return {};
        return "«" + valor + "» no es una fecha válida (use aaaa-mm-dd o dd/mm/aaaa)";
      },
      "FECHA");
}

// Says why the program cannot go on: on stderr, and in a message box unless taking a picture.
int Fallo(const Opciones& o, const std::string& texto) {
  std::cerr << "movfrec-qt: " << texto << '\n';
  if (o.captura.empty() && o.foto.empty()) {
    QMessageBox caja(QMessageBox::Critical, "Movimientos Frecuentes", QString::fromStdString(texto),
                     QMessageBox::Ok);
    caja.setObjectName("mensaje");
    caja.button(QMessageBox::Ok)->setText("&Aceptar");
    caja.exec();
  }
  return 1;
}

int Correr(int argc, char** argv) {
  Opciones o;
  if (const char* env = std::getenv("MOVFREC_DB"); env != nullptr && *env != '\0') o.db = env;
  CLI::App app{"movfrec-qt: ventana principal de los movimientos frecuentes de la empresa.",
               "movfrec-qt"};
  auto formato = app.get_formatter();
  formato->label("Usage", "Uso");
  formato->label("OPTIONS", "OPCIONES");
  formato->column_width(34);
  app.option_defaults()->group("Opciones");
  app.set_help_flag("-h,--help", "Muestra la ayuda y termina");
  app.add_option("--db", o.db,
                 "Base de datos: sqlite:ARCHIVO, sqlite::memory: o postgresql://... "
                 "(si falta, MOVFREC_DB; si no, sqlite:movfrec.db)")
      ->type_name("URI");
  app.add_option("--empresa", o.empresa, "Empresa (1 si falta)")
      ->type_name("N")
      ->check(CLI::Range(1, INT32_MAX));
  app.add_option("--usuario", o.usuario, "Usuario (1 si falta)")
      ->type_name("N")
      ->check(CLI::Range(0, INT32_MAX));
  app.add_option("--hoy", o.hoy, "Fija la fecha de hoy (aaaa-mm-dd o dd/mm/aaaa)")
      ->check(FechaValida());
  app.add_option("--captura", o.captura, "Dibuja la ventana en este PNG, sin pantalla, y termina")
      ->type_name("PNG");
  app.add_option("--foto-pantalla", o.foto,
                 "Muestra la ventana, guarda en este PNG la pantalla tal como se ve y termina")
      ->type_name("PNG")
      ->excludes("--captura");
  app.add_option("--abrir", o.abrir,
                 "Abre al empezar la ventana de calcular:ID, pronostico o ejecutar (con "
                 "--captura, dibuja esa ventana)")
      ->type_name("VENTANA")
      ->check(CLI::Validator(
          [](std::string& v) -> std::string {
            return LeerApertura(v) ? "" : "«" + v + "» no es calcular:ID, pronostico ni ejecutar";
          },
          "VENTANA"));
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::cerr << "movfrec-qt: " << e.what() << "\nUse «movfrec-qt --help» para ver la ayuda.\n";
    return 2;
  }

  qt::AsegurarAplicacion(!o.captura.empty());
  std::shared_ptr<Connection> cn;
  try {
    cn = OpenConnection(o.db);
    clsEmpresa empresa;
    if (!empresa.Load(o.empresa, *cn))
      return Fallo(o, "La empresa " + std::to_string(o.empresa) + " no existe en " + o.db +
                          " (revise --empresa).");
  } catch (const DbError& e) {
    std::string texto = "No se pudo abrir la base de datos " + o.db + ":\n" + DescribirErrorDb(e);
    if (e.kind() == DbErrorKind::MissingTable)
      texto += "\nSi la base de datos es nueva, cree las tablas con «movfrec init».";
    return Fallo(o, texto);
  } catch (const std::exception& e) {
    return Fallo(o, "No se pudo abrir la base de datos " + o.db + ":\n" + e.what());
  }

  DefaultServiceOptions opciones;
  if (!o.hoy.empty()) opciones.hoy = vb::DateOnly(*vb::ParseDate(o.hoy));
  SuiteServices servicios = SuiteServices::Defaults(cn, o.usuario, opciones);
  qt::Instalar(servicios);
  clsMovFrecuente mf;
  mf.Servicios(servicios);
  std::unique_ptr<qt::VentanaPrincipal> ventana;
  try {
    mf.Connect(cn);
    mf.Empresa(o.empresa);
    ventana = std::make_unique<qt::VentanaPrincipal>(mf, o.empresa, o.usuario);
  } catch (const DbError& e) {
    return Fallo(o, "No se pudieron leer los movimientos de " + o.db + ":\n" + DescribirErrorDb(e));
  }
  if (const auto apertura = LeerApertura(o.abrir)) {
    if (apertura->id != 0 && !ventana->Seleccionar(apertura->id))
      return Fallo(o, "El movimiento " + std::to_string(apertura->id) + " no está en la lista.");
    QAction* accion = ventana->findChild<QAction*>(apertura->accion);
    if (!accion || !accion->isEnabled())
      return Fallo(o, "«" + o.abrir + "» no se aplica" +
                          (apertura->id ? " al movimiento " + std::to_string(apertura->id) : "") +
                          ".");
    if (!o.captura.empty()) {
      // The forecast is drawn with its figures: worked out with the window's defaults.
      const auto estado = qt::CapturarProximoDialogo(o.captura, [](QDialog& d) {
        if (auto* calcular = d.findChild<QPushButton*>("btnCalcular")) calcular->click();
      });
      accion->trigger();
      if (!estado->empty()) return Fallo(o, *estado);
      std::cout << "Captura: " << o.captura << '\n';
      return 0;
    }
    ventana->show();
    accion->trigger();
  }
  if (!o.captura.empty()) {
    const std::string error = qt::GuardarCaptura(*ventana, o.captura);
    if (!error.empty()) return Fallo(o, error);
    std::cout << "Captura: " << o.captura << '\n';
    return 0;
  }
  if (!o.foto.empty()) {
    const std::string error = qt::FotografiarPantalla(*ventana, o.foto);
    if (!error.empty()) return Fallo(o, error);
    std::cout << "Foto de la pantalla: " << o.foto << '\n';
    return 0;
  }
  ventana->show();
  return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Correr(argc, argv);
  } catch (const std::exception& e) {
    std::cerr << "movfrec-qt: error: " << e.what() << '\n';
    return 1;
  }
}
